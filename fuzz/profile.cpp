// Any bytes as a profile file, and a few changes to it: nothing is lost, and a change reads back.
#include "Require.h"

#include "platform/profile/ProfileDocument.h"

#include <cstdint>

using tolvex::platform::ProfileDocument;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    ProfileDocument document(bytes);
    require(document.bytes() == bytes);

    // The file's own names, changed as a group and one by one.
    QByteArray single = bytes;
    QStringList sections = document.sections().mid(0, 4);
    sections += QStringLiteral("new");
    for (const QString& section : sections) {
        QStringList keys = document.keys(section).mid(0, 4);
        keys += QStringLiteral("added");
        for (const QString& key : keys) {
            ProfileDocument one(single);
            for (ProfileDocument* each : {&document, &one}) {
                each->set(section, key, QStringLiteral("value"));
                if (key.size() % 3 == 0)
                    each->remove(section, key);
                if (key.size() % 11 == 0)
                    each->removeSection(section);
            }
            single = one.bytes();
            require(document.bytes() == single);
        }
        document.set(section, QStringLiteral("added"), QStringLiteral("value"));
        single = document.bytes();
    }
    require(document.value(QStringLiteral("NEW"), QStringLiteral("Added")) == QStringLiteral("value"));
    return 0;
}
