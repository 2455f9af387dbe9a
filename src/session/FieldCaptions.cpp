#include "FieldCaptions.h"

#include "GenMod.h"
#include "platform/Controls.h"
#include "platform/Conversions.h"

#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>

namespace FieldCaptions {

Caption label(QLabel* label, const QString& column, const QString& defaultText) {
    return {column, defaultText, QStringLiteral(" :"), [label](const QString& text) {
                label->setText(text);
                if (label->buddy())
                    platform::setBuddy(label, label->buddy());
            }};
}

Caption formCaption(QWidget* form, const QString& column, const QString& defaultText) {
    return {column, defaultText, QString(), [form](const QString& text) {
                form->setWindowTitle(text);
                // The frame of a child window follows its form's title, except to an empty one.
                if (auto* frame = qobject_cast<QMdiSubWindow*>(form->parentWidget()))
                    frame->setWindowTitle(text);
            }};
}

Caption textBox(QLineEdit* box, const QString& column, const QString& defaultText) {
    return {column, defaultText, QString(), [box](const QString& text) { box->setText(text); }};
}

QList<Caption> fullNameLabels(const QList<QLabel*>& labels) {
    QList<Caption> captions;
    for (qsizetype i = 0; i < labels.size(); ++i)
        captions << label(labels[i], QString::fromLatin1(Fields[i].column),
                          QString::fromLatin1(Fields[i].name) + QStringLiteral(" :"));
    return captions;
}

QList<Caption> fullNameBoxes(const QList<QLineEdit*>& boxes) {
    QList<Caption> captions;
    for (qsizetype i = 0; i < boxes.size(); ++i)
        captions << textBox(boxes[i], QString::fromLatin1(Fields[i].column),
                            QString::fromLatin1(Fields[i].name));
    return captions;
}

void Apply(const QList<Caption>& captions) {
    db::Recordset rs;
    rs.Open(QStringLiteral("Select * from FieldCaptions"), GenMod::Conn, db::adOpenStatic, db::adLockReadOnly,
            -1);
    if (rs.eof()) {
        for (const auto& c : captions)
            c.apply(c.defaultText);
    } else {
        for (const auto& c : captions)
            c.apply(platform::TrimStr(rs.Fields(c.column)) + c.ending);
    }
    rs.Close();
}

} // namespace FieldCaptions
