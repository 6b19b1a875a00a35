// Reads the program's compiled help file: its pages, its
// contents tree and the page of each help context.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <memory>
#include <optional>

namespace tolvex {

class HelpFile {
public:
    // Nothing if the file (a Windows path) is missing or is not compiled help.
    static std::unique_ptr<HelpFile> open(const QString& path);
    virtual ~HelpFile() = default;

    // The bytes of a page or picture by its name inside the file ("/console.html"); pages are UTF-8.
    virtual std::optional<QByteArray> read(const QString& name) const = 0;

    struct Entry {
        QString title;
        QString page;
        int level = 0; // of the contents tree, from 0
    };
    // The contents in reading order.
    virtual QList<Entry> contents() const = 0;
    // The page of a help context number, or the default page.
    virtual QString pageOf(int context) const = 0;
};

} // namespace tolvex
