#pragma once

#include <QByteArray>
#include <QString>

struct sqlite3;
struct sqlite3_stmt;

// Owns one prepared SQLite statement and finalizes it when it goes out of scope, so no
// return path of the store can leak a statement. Same thread rules as the connection.
class SqlStatement
{
public:
    // Prepares the text (length -1); a failed prepare leaves an invalid holder.
    SqlStatement(sqlite3* db, const char* sql);
    ~SqlStatement();

    SqlStatement(const SqlStatement&) = delete;
    SqlStatement& operator=(const SqlStatement&) = delete;

    bool isValid() const { return m_stmt != nullptr; }
    sqlite3_stmt* get() const { return m_stmt; }

    // Texts and blobs are copied by SQLite (transient), so the arguments may die at once.
    void bindText(int index, const QString& text);
    void bindBlob(int index, const QByteArray& bytes);
    void bindNull(int index);
    void bindDouble(int index, double value);
    void bindInt(int index, int value);

    // One step; the SQLite result code.
    int step();

    QString columnText(int column) const;
    QByteArray columnBlob(int column) const;
    double columnDouble(int column) const;
    int columnInt(int column) const;

private:
    sqlite3_stmt* m_stmt = nullptr;
};
