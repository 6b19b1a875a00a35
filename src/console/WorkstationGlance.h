// The state of the configuration at a glance: the findings of the configuration check in short sentences,
// each with the console's control that opens the form to correct it.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace tolvex {

struct Workstation;

struct WorkstationGlance {
    struct Fact {
        QString name;
        QString value;
        bool missing = false;
    };
    struct ToDo {
        QString text; // the check's own line
        QString control;
    };
    QList<Fact> facts;
    QList<ToDo> toDo;
    QStringList done;
};

// From the current settings; runs CheckConfiguration, so it asks the file system for each location once.
WorkstationGlance LookAtWorkstation(Workstation& station);

} // namespace tolvex
