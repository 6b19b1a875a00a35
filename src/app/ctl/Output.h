// The output of a command: aligned columns for people or one JSON document, from the same records.
#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <optional>
#include <string_view>
#include <vector>

namespace tolvex::ctl {

// A member of a record that is also a column for people, by its JSON key.
struct Column {
    const char* key;
    const char* heading;
    bool toTheRight = false; // numbers
};
using Columns = std::vector<Column>;

class Output {
public:
    Output(bool json, bool quiet)
        : json_(json)
        , quiet_(quiet) {}
    // For a command that another one asks (Asking.h): its document is kept for the caller, and nothing is
    // written.
    static Output Kept();

    bool json() const { return json_; }

    // JSON documents are written when the command ends, so that one that
    // failed late can report it: its document is {"error": {"text": ...,
    // "number": ...}}, with "details" that hold its partial output.
    //
    // Records of one kind, an array in JSON; people see the columns. Members that are arrays or objects are
    // joined by commas.
    void records(const QJsonArray& records, const Columns& columns);
    // One record; people see a line "heading: value" for each column.
    void record(const QJsonObject& record, const Columns& columns);
    // One value: people see it alone, as it is.
    void value(const char* key, const QJsonValue& value);
    // A line of text outside records, as it is. Several JSON documents are not one document: only commands
    // that declare one document per line use it with --json.
    void line(const QByteArray& text);
    // A line about a current event, for someone who follows it: written at once.
    void event(const QByteArray& text);
    // Part of a document that is written piece by piece, as it is.
    void piece(std::string_view bytes);

    // A sentence for people on standard error: why a command failed, what the system asks or reports.
    void say(const QString& sentence) const;
    // The same for useful notes; not with --quiet.
    void note(const QString& sentence) const;

    // Why a command ends without success, for its document, and the error number, 0 for none. Several
    // sentences are kept.
    void setError(const QString& sentence, int number);

    enum class Ending { Done, No, Failed };
    // Writes everything: for a command without output, {"done": true} or its error. `shown` is the system's
    // last message to the user, used if the command added none of its own. False if standard output did not
    // accept everything.
    bool finish(Ending ending, const QString& shown);
    // The document that finish() writes with JSON.
    QJsonDocument ended(Ending ending, const QString& shown) const;

private:
    void print(const QByteArray& bytes) const;

    bool json_;
    bool quiet_;
    bool kept_ = false;
    bool written_ = false; // standard output has something besides the document
    std::optional<QJsonDocument> document_;
    QStringList errors_;
    int errorNumber_ = 0;
};

} // namespace tolvex::ctl
