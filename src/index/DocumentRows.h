#pragma once

#include "platform/Controls.h"

#include <QByteArray>
#include <QList>
#include <QVariant>
#include <vector>

// The rows of the list of all documents, kept compactly so that an office's whole index fits:
// each row's shown values lie packed in large blocks (texts as UTF-8, dates as day numbers),
// about a tenth of a kilobyte for a document with ordinary titles. Texts are made only for the
// rows on screen. Rows are appended first and announced to the list view by publish().
class DocumentRows : public platform::ListRows {
    Q_OBJECT
  public:
    // The shown columns, in order; column 0 holds the key.
    static constexpr int Columns = 6;

    using platform::ListRows::ListRows;

    // Appends a row. `values` holds the key, title 1, title 2, document date, follow-up date and
    // bookmark; a date is a QDate, any other value is shown as its text.
    void append(const QVariant (&values)[Columns]);
    // Makes the rows appended so far visible to the list view.
    void publish();
    // Removes all rows.
    void clear();
    // Rows appended, announced or not.
    qsizetype appended() const { return qsizetype(m_starts.size()); }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QString text(int row, int column) const override;

  private:
    QList<QByteArray> m_blocks;
    // Per row: its block (high 32 bits) and its offset in the block.
    std::vector<quint64> m_starts;
    QByteArray m_scratch;
    int m_published = 0;
};
