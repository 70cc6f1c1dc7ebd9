#include "SqlStatement.h"

#include <sqlite3.h>

SqlStatement::SqlStatement(sqlite3* db, const char* sql)
{
    // A store whose open failed has no connection; its statements are simply invalid.
    if (!db)
        return;
    if (sqlite3_prepare_v2(db, sql, -1, &m_stmt, nullptr) != SQLITE_OK) {
        // A failed prepare may still hand back a statement on some versions; never keep it.
        sqlite3_finalize(m_stmt);
        m_stmt = nullptr;
    }
}

SqlStatement::~SqlStatement()
{
    sqlite3_finalize(m_stmt);
}

void SqlStatement::bindText(int index, const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    sqlite3_bind_text(m_stmt, index, utf8.constData(), utf8.size(), SQLITE_TRANSIENT);
}

void SqlStatement::bindBlob(int index, const QByteArray& bytes)
{
    sqlite3_bind_blob(m_stmt, index, bytes.constData(), bytes.size(), SQLITE_TRANSIENT);
}

void SqlStatement::bindNull(int index)
{
    sqlite3_bind_null(m_stmt, index);
}

void SqlStatement::bindDouble(int index, double value)
{
    sqlite3_bind_double(m_stmt, index, value);
}

void SqlStatement::bindInt(int index, int value)
{
    sqlite3_bind_int(m_stmt, index, value);
}

int SqlStatement::step()
{
    return m_stmt ? sqlite3_step(m_stmt) : SQLITE_MISUSE;
}

QString SqlStatement::columnText(int column) const
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(m_stmt, column));
    if (!text)
        return QString();
    return QString::fromUtf8(text, sqlite3_column_bytes(m_stmt, column));
}

QByteArray SqlStatement::columnBlob(int column) const
{
    const void* data = sqlite3_column_blob(m_stmt, column);
    const int size = sqlite3_column_bytes(m_stmt, column);
    if (!data || size < 1)
        return QByteArray();
    return QByteArray(static_cast<const char*>(data), size);
}

double SqlStatement::columnDouble(int column) const
{
    return sqlite3_column_double(m_stmt, column);
}

int SqlStatement::columnInt(int column) const
{
    return sqlite3_column_int(m_stmt, column);
}
