// The state of the configuration for the eye: what the configuration check finds, in words that a person
// reads at a glance, each with the console's control that leads to its form.
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

// From the settings as they are; runs CheckConfiguration, so it asks the file system for each location once.
WorkstationGlance LookAtWorkstation(Workstation& station);

} // namespace tolvex
