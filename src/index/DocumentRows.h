#pragma once

#include "platform/Controls.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QDate>
#include <QList>
#include <QVariant>
#include <vector>

class QString;

// The rows of the list of all documents, kept compactly so that an office's whole index fits:
// each row's shown values lie packed in large blocks (texts as UTF-8, dates as day numbers),
// about a tenth of a kilobyte for a document with ordinary titles. Texts are made only for the
// rows on screen. Rows are appended first and announced to the list view by publish().
class DocumentRows : public platform::ListRows {
    Q_OBJECT
  public:
    DocumentRows(int columns, QObject* parent);

    int columns() const { return m_columns; }
    // Appends a row, its columns() values one by one between beginRow and endRow: a text in
    // UTF-8, or a date, shown as "dd/MMM/yyyy" in the running system's language.
    void beginRow();
    void addText(QByteArrayView utf8);
    void addDate(const QDate& date);
    void endRow();
    // Makes the rows appended so far visible to the list view.
    void publish();
    // Removes all rows.
    void clear();
    // Rows appended, announced or not.
    qsizetype appended() const { return qsizetype(m_starts.size()); }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QString text(int row, int column) const override;

  private:
    int m_columns;
    QList<QByteArray> m_blocks;
    // Per row: its block (high 32 bits) and its offset in the block.
    std::vector<quint64> m_starts;
    QByteArray m_scratch;
    int m_published = 0;
};

// One column of a list of documents: the field it shows, and whether it holds a date.
struct ShownField {
    const char* name;
    bool date = false;
};

// Reads `statement` on GenMod::Conn, one row at a time, into the DocumentRows of `list`: per
// row the `fields` in order, texts trimmed. The list is emptied once the statement has run,
// so a refused statement leaves the old rows; it shows its first rows while the rest are
// read. A value that cannot be shown (a Null) ends the reading there with the error; the rows
// before it stay listed. Errors are thrown.
void readDocuments(platform::ListView* list, const QString& statement, const QList<ShownField>& fields);
