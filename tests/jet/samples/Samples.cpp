#include "jet/samples/Samples.h"

#include "jet/base/Error.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

namespace jet::tests {

namespace {

// Between fields and after rows: characters that occur in no text of a database.
constexpr char fieldEnd = '\x1F';
constexpr char rowEnd = '\x1E';

// Outside these days the other reader's calendar is wrong.
constexpr double firstDay = 2;
constexpr double lastDay = 2958465; // 31 December 9999

std::vector<Sample> findSamples() {
    std::vector<Sample> samples;
    const char* folder = std::getenv("TOLVEX_JET_SAMPLES");
    if (folder == nullptr || *folder == '\0')
        return samples;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        std::string extension = entry.path().extension();
        std::transform(extension.begin(), extension.end(), extension.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        if (!entry.is_regular_file() || extension != ".mdb")
            continue;
        Sample sample{entry.path(), std::nullopt};
        try {
            const Bytes bytes = sample.bytes();
            sample.header = DecodePageZero({bytes.data(), std::min<std::size_t>(bytes.size(), PageSize)});
        } catch (const Error&) {
            // Opening must refuse it, too.
        }
        samples.push_back(sample);
    }
    std::sort(samples.begin(), samples.end(),
              [](const Sample& a, const Sample& b) { return a.path < b.path; });
    return samples;
}

std::string hex(const Bytes& bytes) {
    std::string text;
    char two[3];
    for (const std::uint8_t byte : bytes) {
        std::snprintf(two, sizeof two, "%02X", byte);
        text += two;
    }
    return text;
}

std::string escaped(const std::u16string& text) {
    std::string out;
    for (const char unit : ToUtf8(text))
        out += unit == '\r'   ? "\\r"
               : unit == '\n' ? "\\n"
               : unit == '\t' ? "\\t"
               : unit == '\\' ? "\\\\"
                              : std::string(1, unit);
    return out;
}

std::string dateText(Date date) {
    const auto seconds = std::llround(std::fmod(date.days, 1.0) * 86400);
    const std::chrono::sys_days epoch = std::chrono::year(1899) / 12 / 30;
    const std::chrono::year_month_day day{epoch + std::chrono::days(static_cast<int>(date.days))};
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d", int{day.year()}, unsigned{day.month()},
                  unsigned{day.day()}, static_cast<int>(seconds / 3600), static_cast<int>(seconds / 60 % 60),
                  static_cast<int>(seconds % 60));
    return text;
}

// A value in the other reader's form; nothing if it writes such values differently.
std::optional<std::string> written(const Value& value) {
    if (IsNull(value))
        return "NULL";
    if (const auto* held = std::get_if<bool>(&value))
        return *held ? "1" : "0";
    if (const auto* held = std::get_if<std::u16string>(&value))
        return escaped(*held);
    if (const auto* held = std::get_if<Bytes>(&value))
        return hex(*held);
    if (const auto* held = std::get_if<Date>(&value))
        return held->days >= firstDay && held->days < lastDay ? std::optional(dateText(*held)) : std::nullopt;
    if (const auto* held = std::get_if<std::int32_t>(&value))
        return std::to_string(*held);
    if (const auto* held = std::get_if<std::int16_t>(&value))
        return std::to_string(*held);
    if (const auto* held = std::get_if<std::uint8_t>(&value))
        return std::to_string(*held);
    if (const auto* held = std::get_if<double>(&value)) {
        char text[40];
        std::snprintf(text, sizeof text, "%.16g", *held);
        return text;
    }
    return std::nullopt;
}

std::string quoted(const std::string& text) {
    std::string out = "'";
    for (const char c : text)
        out += c == '\'' ? "'\\''" : std::string(1, c);
    return out + '\'';
}

// The rows of a table from the other reader, field by field; nothing if it fails.
std::optional<std::vector<std::vector<std::string>>> exported(const Sample& sample,
                                                              const std::string& table) {
    const std::string command =
        std::string("mdb-export -H -e -b hex -Q -0 NULL -D '%Y-%m-%d %H:%M:%S' -T '%Y-%m-%d %H:%M:%S' -d ") +
        quoted({fieldEnd}) + " -R " + quoted({rowEnd}) + ' ' + quoted(sample.path) + ' ' + quoted(table) +
        " 2>/dev/null";
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        throw std::runtime_error("cannot run mdb-export");
    std::vector<std::vector<std::string>> rows;
    std::vector<std::string> row(1);
    for (int c = std::getc(pipe); c != EOF; c = std::getc(pipe)) {
        if (c == fieldEnd)
            row.emplace_back();
        else if (c == rowEnd)
            rows.push_back(std::exchange(row, std::vector<std::string>(1)));
        else
            row.back() += static_cast<char>(c);
    }
    if (pclose(pipe) != 0)
        return std::nullopt;
    return rows;
}

} // namespace

std::string Sample::name() const {
    std::string text = std::filesystem::path(path).stem();
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return text;
}

Bytes Sample::bytes() const {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + path);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

bool Sample::canBeChanged() const {
    return header && !isJet3() && header->databaseKey == 0 && header->hasKnownOrder() &&
           bytes().size() % PageSize == 0;
}

void PrintTo(const Sample& sample, std::ostream* out) {
    *out << sample.path;
}

const std::vector<Sample>& Samples() {
    static const std::vector<Sample> samples = findSamples();
    return samples;
}

OpenSample::OpenSample(const Sample& sample) {
    const std::string path = "sample.mdb";
    storage.put(path, sample.bytes());
    OpenOptions options;
    options.readOnly = true;
    if (sample.header)
        options.password = sample.header->password;
    database = Database::open(storage, path, options);
}

std::optional<TwoReadings> ReadTwice(const Sample& sample, const Catalog& catalog,
                                     const CatalogObject& object) {
    const auto theirRows = exported(sample, ToUtf8(object.name));
    if (!theirRows)
        return std::nullopt;
    const Table table = catalog.table(object);
    const std::vector<Column>& columns = table.definition().columns;
    std::vector<std::size_t> order(columns.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::sort(order.begin(), order.end(),
              [&](auto a, auto b) { return columns[a].number < columns[b].number; });

    std::vector<std::vector<std::string>> ourRows;
    std::vector<bool> comparable(order.size(), true);
    std::vector<Value> values;
    RowPointer at;
    for (RowView row; table.next(at, row);) {
        table.values(row, values);
        std::vector<std::string> fields;
        for (std::size_t place = 0; place < order.size(); ++place) {
            const std::optional<std::string> text = written(values[order[place]]);
            comparable[place] = comparable[place] && text.has_value();
            fields.push_back(text.value_or(std::string()));
        }
        ourRows.push_back(std::move(fields));
    }
    const auto linesOf = [&](const std::vector<std::vector<std::string>>& rows) {
        std::vector<std::string> lines;
        for (const std::vector<std::string>& row : rows) {
            std::string line;
            for (std::size_t place = 0; place < row.size(); ++place)
                if (place >= comparable.size() || comparable[place])
                    line += row[place] + '|';
            lines.push_back(line);
        }
        // The two readers visit moved rows at different places.
        std::sort(lines.begin(), lines.end());
        return lines;
    };
    return TwoReadings{linesOf(*theirRows), linesOf(ourRows)};
}

} // namespace jet::tests
