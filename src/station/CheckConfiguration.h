// Finds what a configuration still lacks.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace tolvex {

struct Workstation;

// What is missing, each item on a line of its own after an empty one; empty if nothing is missing. Tests the
// audiowall folders that were not checked yet and notes their state.
QString CheckConfiguration(Workstation& station);

struct LocationStatus {
    int part = 0;
    QString path;
    QString state; // "available", "missing", "not set", "not needed"
    QString list;  // for an available one that is needed: CartListFacts::state; otherwise empty
};

// The configuration in a few facts, from the settings.
struct ConfigurationStatus {
    QString localIni;
    QString configName;
    QString systemIni;
    QString dataLocation;
    qint32 linkMeshId = 0;
    qint32 cartPlayers = 0;
    QStringList missing; // the lines of CheckConfiguration
    QList<LocationStatus> locations;
    QStringList listFaults; // about torn and short cart lists, a sentence each
};
ConfigurationStatus LookAtConfiguration(Workstation& station);

} // namespace tolvex
