#include "ui/richtext/RichText.h"

#include <QTextDocument>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    QTextDocument document;
    tolvex::LoadRichText(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)),
                         document);
    return 0;
}
