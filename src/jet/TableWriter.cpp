#include "jet/TableWriter.h"
namespace jet {
Table::Table(Pager& pager, PageNumber page, std::u16string name, const PropertyBlob&)
    : pager_(&pager)
    , name_(std::move(name))
    , definition_(std::make_unique<TableDefinition>(ReadTableDefinition(pager, page)))
    , rules_(definition_->columns.size()) {}
Table::Table(Table&&) noexcept = default;
Table& Table::operator=(Table&&) noexcept = default;
Table::~Table() = default;
} // namespace jet
