#include "audio/forms/FoundCarts.h"

#include "core/time/TimeText.h"

#include <algorithm>
#include <numeric>

namespace tolvex {

namespace {

constexpr int lengthFormat = 202;
constexpr const char* headings[] = {"", "Cart", "Line 1", "Line 2", "Line 3", "Length"};

} // namespace

void FoundCarts::clear() {
    beginResetModel();
    rows_.clear();
    order_.clear();
    endResetModel();
}

void FoundCarts::add(const QList<FoundCart>& found) {
    if (found.isEmpty())
        return;
    const std::size_t before = rows_.size();
    const auto count = static_cast<std::size_t>(found.size());
    beginInsertRows({}, int(before), int(before + count) - 1);
    for (const FoundCart& cart : found)
        rows_.push_back(
            {cart.number,
             {cart.record.Line1.trimmed(), cart.record.Line2.trimmed(), cart.record.Line3.trimmed()},
             SecondsToTime(static_cast<double>(cart.record.Length), lengthFormat)});
    order_.resize(rows_.size());
    std::iota(order_.begin() + std::ptrdiff_t(before), order_.end(), before);
    endInsertRows();
    if (sortedBy_ >= 0)
        arrange(before);
}

void FoundCarts::addNone() {
    beginInsertRows({}, 0, 0);
    rows_.emplace_back();
    order_.push_back(0);
    endInsertRows();
}

qint32 FoundCarts::cart(int row) const {
    return row >= 0 && row < rowCount() ? rows_[order_[std::size_t(row)]].cart : 0;
}

int FoundCarts::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(rows_.size());
}

int FoundCarts::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(ColumnCount);
}

QString FoundCarts::text(const Row& row, int column) const {
    if (row.cart == 0)
        return column == Key      ? QStringLiteral("0")
               : column == CartNo ? QStringLiteral("No carts found.")
                                  : QString();
    switch (column) {
    case Key:
        return QString::number(row.cart).rightJustified(6, u'0');
    case CartNo:
        return QString::number(row.cart);
    case Length:
        return row.length;
    default:
        return row.lines[std::size_t(column - Line1)];
    }
}

QVariant FoundCarts::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    if (role == Qt::TextAlignmentRole && index.column() == Length)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return role == Qt::DisplayRole ? text(rows_[order_[std::size_t(index.row())]], index.column())
                                   : QVariant();
}

QVariant FoundCarts::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= ColumnCount)
        return {};
    if (role == Qt::TextAlignmentRole)
        return int((section == Length ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    return role == Qt::DisplayRole ? QString::fromLatin1(headings[section]) : QVariant();
}

bool FoundCarts::isBefore(std::size_t a, std::size_t b) const {
    const Row& one = rows_[direction_ == Qt::AscendingOrder ? a : b];
    const Row& other = rows_[direction_ == Qt::AscendingOrder ? b : a];
    // The numbers with leading zeros sort as the numbers do.
    if (sortedBy_ == Key)
        return one.cart < other.cart;
    return text(one, sortedBy_).compare(text(other, sortedBy_), Qt::CaseInsensitive) < 0;
}

// Sorts the rows from `sorted` on in among those before, which are sorted. 0: all of them.
void FoundCarts::arrange(std::size_t sorted) {
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    std::vector<std::size_t> held;
    for (const QModelIndex& index : before)
        held.push_back(order_[std::size_t(index.row())]);
    if (sorted == 0)
        std::iota(order_.begin(), order_.end(), sorted);
    const auto less = [this](std::size_t a, std::size_t b) { return isBefore(a, b); };
    const auto middle = order_.begin() + std::ptrdiff_t(sorted);
    std::stable_sort(middle, order_.end(), less);
    std::inplace_merge(order_.begin(), middle, order_.end(), less);
    std::vector<int> places(before.isEmpty() ? 0 : order_.size());
    for (std::size_t place = 0; place < places.size(); ++place)
        places[order_[place]] = int(place);
    QModelIndexList after;
    for (qsizetype i = 0; i < before.size(); ++i)
        after += index(places[held[std::size_t(i)]], before[i].column());
    changePersistentIndexList(before, after);
    emit layoutChanged({}, VerticalSortHint);
}

void FoundCarts::sort(int column, Qt::SortOrder order) {
    sortedBy_ = column;
    direction_ = order;
    arrange(0);
}

} // namespace tolvex
