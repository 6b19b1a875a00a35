// Ties the fields of a record to the controls of a form: fill shows them, take stores what stands in the
// controls. The rows are a table, for any record, by member pointers; the settings bring their own
// (ui/binding/SettingBinding.h).
//
//     const BoundField<Command> fields[] = {
//         Bound<&Command::address>("txtTCPIPAddress").atMost(256),
//         Bound<&Command::port>("txtTCPIPPort").range(1, 65535),
//         Bound<&Command::serialPort>("comboSerialPort").from(1), // its first entry stands for 1
//         Bound<&Command::protocol>("optTCP optUDP"),             // 0 the first of them, 1 the second
//     };
//     binding_.bind(command_, fields);
//     binding_.fill();
#pragma once

#include "ui/binding/Controls.h"

#include <optional>
#include <vector>

namespace tolvex {

using FieldRef = std::variant<bool*, qint16*, qint32*, float*, double*, QString*>;

// How a field is shown.
struct FieldLook {
    QString control;  // or several radio buttons with a blank between: the field says which is chosen
    QString help;     // tool tip of a control that has none
    qint32 first = 0; // what the first entry of a list without values, or the first radio button, stands for
    qint32 ticked = -1;        // what a ticked box is stored as
    qint32 lowest = INT32_MIN; // of a number that is typed
    qint32 highest = INT32_MAX;
    int longest = 0; // characters of a text; 0: no limit
};

template<class Record>
struct BoundField {
    FieldLook look;
    FieldRef (*at)(Record&) = nullptr;

    BoundField from(qint32 first) && {
        look.first = first;
        return std::move(*this);
    }
    BoundField tickedAs(qint32 value) && {
        look.ticked = value;
        return std::move(*this);
    }
    BoundField range(qint32 lowest, qint32 highest) && {
        look.lowest = lowest;
        look.highest = highest;
        return std::move(*this);
    }
    BoundField atMost(int characters) && {
        look.longest = characters;
        return std::move(*this);
    }
    BoundField help(const char* line) && {
        look.help = QString::fromUtf8(line);
        return std::move(*this);
    }
};

template<class Pointer>
struct RecordOf;
template<class Record, class Value>
struct RecordOf<Value Record::*> {
    using Type = Record;
};

template<auto member>
auto Bound(const char* control) {
    using Record = typename RecordOf<decltype(member)>::Type;
    BoundField<Record> field;
    field.look.control = QString::fromLatin1(control);
    field.at = [](Record& record) -> FieldRef { return &(record.*member); };
    return field;
}

// A field whose control cannot be stored, and why, as a sentence.
struct WrongField {
    QWidget* control = nullptr;
    QString message;
};

class FormBinding {
public:
    explicit FormBinding(QWidget* form)
        : form_(form) {}

    // The record outlives the binding. Limits texts to their length and sets tool tips.
    template<class Record, std::size_t count>
    void bind(Record& record, const BoundField<Record> (&fields)[count]) {
        for (const BoundField<Record>& field : fields)
            bind(field.look, [&record, at = field.at] { return at(record); });
    }
    // One field, whose place is asked for each time.
    void bind(const FieldLook& look, std::function<FieldRef()> field);

    // Shows the record. A value that a list or radio buttons do not offer leaves nothing chosen.
    void fill();
    // Stores what the controls say. A list or a choice with nothing chosen leaves its field as it is; a text
    // stands for the number in front of it, 0 for none, moved to the nearer end of what the field's type
    // holds.
    void take();
    // The first number, of the controls that can be used, which lies outside its range or does not fit its
    // field.
    std::optional<WrongField> wrong() const;
    // Whether take() would change the record.
    bool changed() const;

private:
    struct Tie {
        FieldLook look;
        std::function<FieldRef()> field;
        QList<QWidget*> controls;
    };
    ControlValue shown(const Tie& tie) const;

    QWidget* form_;
    std::vector<Tie> ties_;
};

} // namespace tolvex
