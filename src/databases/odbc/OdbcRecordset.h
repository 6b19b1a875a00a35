// The rows of a table on a server, or of a query's result, one of which is current. There is no table mode: a
// server has no index order to seek in.
//
// One statement reads all rows when the recordset opens, and moving and finding look at them in memory, so
// that predicates mean the same as in a file. Later changes by others show in a recordset opened later;
// edit() reads its row again, and update() refuses to overwrite what others changed since.
#pragma once

#include "databases/odbc/OdbcRows.h"
#include "databases/odbc/ServerSession.h"

namespace tolvex {

class OdbcRecordset final : public SuiteRecordset {
public:
    // Of a table. It can be changed if it has a unique index and the server permits it.
    OdbcRecordset(std::shared_ptr<ServerSession> session, const OdbcTable& table);
    // Of a statement; read-only.
    OdbcRecordset(std::shared_ptr<ServerSession> session, const QString& statement);

    QString name() const override { return source_.table; }
    bool tableMode() const override { return false; }
    bool updatable() const override { return !source_.key.empty() && !session_->readOnly(); }
    int recordCount() const override { return static_cast<int>(rows_.size()); }
    int size(const QString& field) const override { return column(columnOf(field)).size; }

    void setIndex(const QString& index) override;
    void seek(const QVariant& value) override;
    void findFirst(const QString& criterion) override;
    bool noMatch() const override { return noMatch_; }

    bool bof() const override { return place_ == Place::Empty; }
    bool eof() const override { return place_ == Place::Empty || place_ == Place::Behind; }
    void moveFirst() override;
    void moveNext() override;

    QVariant value(const QString& field) override;
    void addNew() override;
    void edit() override;
    void set(const QString& field, const QVariant& value) override;
    void update() override;
    void remove() override;

private:
    enum class Place { Empty, On, Removed, Behind };
    enum class Editing { No, Adding, Changing };

    void load(const QString& statement);
    const OdbcColumn& column(std::size_t number) const {
        return source_.columns[static_cast<qsizetype>(number)];
    }
    std::size_t columnOf(const QString& field) const;
    void checkCurrent() const;
    void checkUpdatable() const;
    void begin(Editing editing);
    void saveNew();
    void saveChanged();

    std::shared_ptr<ServerSession> session_;
    OdbcRowSource source_;
    std::vector<OdbcRow> rows_;
    std::size_t at_ = 0;
    Place place_ = Place::Empty;
    bool noMatch_ = false;

    Editing editing_ = Editing::No;
    OdbcRow values_; // of the row being added or edited
    std::vector<bool> set_;
};

} // namespace tolvex
