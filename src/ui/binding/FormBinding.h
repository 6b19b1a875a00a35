// Ties the fields of a record to the controls of a form: fill shows them, take stores the contents of the
// controls. The rows are a table, for any record, by member pointers; the settings have their own rows
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
    QString control;    // or several radio buttons separated by blanks: the field selects one
    QString help;       // tool tip of a control that has none
    qint32 first = 0;   // the value of the first entry of a list without values, or of the first radio button
    qint32 ticked = -1; // the stored value of a ticked box
    qint32 lowest = INT32_MIN; // for a typed number
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

// A field whose control cannot be stored, and the reason, as a sentence.
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
    // One field whose address is computed each time.
    void bind(const FieldLook& look, std::function<FieldRef()> field);

    // Shows the record. A value that a list or radio buttons do not offer leaves nothing chosen.
    void fill();
    // Stores the contents of the controls. A list or group with nothing chosen leaves its field as it is; for
    // a number field, a text means its leading number, 0 for none, moved to the nearer end of the field
    // type's range.
    void take();
    // The first number in an enabled control that is
    // outside its range or does not fit its field.
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
