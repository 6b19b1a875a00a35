// What a configuration still lacks.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace tolvex {

struct Workstation;

// The lines that say what is missing, each on a line of its own behind an empty one; empty when all is well.
// Tests the folders of the audiowall that were not checked yet and notes their state.
QString CheckConfiguration(Workstation& station);

struct LocationStatus {
    int part = 0;
    QString path;
    QString state; // "available", "missing", "not set", "not needed"
    QString list;  // of an available one that is needed: CartListFacts::state; otherwise empty
};

// The configuration in a few facts, as the settings hold them.
struct ConfigurationStatus {
    QString localIni;
    QString configName;
    QString systemIni;
    QString dataLocation;
    qint32 linkMeshId = 0;
    qint32 cartPlayers = 0;
    QStringList missing; // the lines of CheckConfiguration
    QList<LocationStatus> locations;
    QStringList listFaults; // of torn and short cart lists, a sentence each
};
ConfigurationStatus LookAtConfiguration(Workstation& station);

} // namespace tolvex
