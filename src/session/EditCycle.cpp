#include "EditCycle.h"

#include "GenMod.h"
#include "Session.h"
#include "platform/Controls.h"
#include "platform/Conversions.h"
#include "platform/MousePointer.h"
#include "platform/MsgBox.h"

#include <QMdiSubWindow>
#include <QPushButton>

using platform::MsgBox;

QList<QPushButton*> CommandForm::createCmdButtons(QWidget* parent, const QStringList& captions) {
    QList<QPushButton*> buttons;
    for (int i = 0; i < captions.size(); ++i) {
        auto* button = cmd.make(parent, i);
        button->setText(captions[i]);
        connect(button, &QPushButton::clicked, this, [this, i] { cmd_Click(i); });
        buttons << button;
    }
    return buttons;
}

QStringList RecordForm::editCaptions() {
    return {QStringLiteral("Reset"), QStringLiteral("Edit"), QStringLiteral("Save"), QStringLiteral("Close")};
}

void CommandForm::readAtLoad(Pointer pointer, const std::function<void()>& read) {
    const bool hourglass = pointer == Pointer::Hourglass;
    try {
        if (hourglass)
            platform::setMousePointer(platform::vbHourglass);
        if (GenMod::OpenConnection()) {
            read();
            GenMod::CloseConnection();
        }
        if (hourglass)
            platform::setMousePointer(platform::vbDefault);
    } catch (const platform::Error& e) {
        if (hourglass)
            platform::setMousePointer(platform::vbDefault);
        platform::MsgBox(e.description(), platform::vbCritical);
    }
    fitWindow();
}

void CommandForm::fitWindow() {
    QWidget* w = window();
    if (!w)
        return;
    const QSize wanted = w->sizeHint().expandedTo(w->minimumSizeHint());
    if (wanted.width() <= w->width() && wanted.height() <= w->height())
        return;
    if (auto* frame = qobject_cast<QMdiSubWindow*>(w->parentWidget()))
        frame->adjustSize();
    else
        w->resize(wanted.expandedTo(w->size()));
}

void RecordForm::resetRecord(QWidget* list, const std::function<void()>& clearFields) {
    list->hide();
    clearFields();
    EditMode = false;
}

void RecordForm::clearTextBoxesAndKey() {
    platform::clearTextBoxes(window());
    CurrentRowID = 0;
}

void RecordForm::showRecordList(QWidget* list, const std::function<void()>& fill) {
    try {
        if (!GenMod::OpenConnection())
            return;
        fill();
        GenMod::CloseConnection();
        list->show();
        list->setFocus(); // a keyboard user picks a row at once
    } catch (const platform::Error& e) {
        MsgBox(e.description(), platform::vbCritical);
    }
}

std::optional<qint16> RecordForm::chosenKey(const platform::ListBox* list) {
    if (list->ListCount() == 0)
        return std::nullopt;
    return platform::CInt(list->ItemData(list->ListIndex()));
}

void RecordForm::loadRecord(qint32 key, const QString& statement, QWidget* list,
                            const std::function<void(db::Recordset&)>& apply) {
    try {
        if (!GenMod::OpenConnection())
            return;
        db::Recordset rs;
        // Handlers that fire while the row is applied may open and release Conn themselves;
        // the recordset keeps its own connection, so it stays readable.
        rs.Open(statement, GenMod::Conn, db::adOpenStatic, db::adLockReadOnly, -1);
        if (!rs.eof()) {
            EditMode = true;
            CurrentRowID = key;
            apply(rs);
        }
        rs.Close();
        GenMod::CloseConnection();
        const bool picking = window()->focusWidget() == list;
        list->hide();
        // A row picked from the keyboard leaves the focus in its first field, not on a button.
        if (const auto boxes = platform::textBoxes(window()); picking && !boxes.isEmpty())
            boxes.first()->setFocus();
    } catch (const platform::Error& e) {
        // Unlike the other steps, a failed load is shown as a warning.
        MsgBox(e.description(), platform::vbExclamation);
    }
}

bool RecordForm::saveRecord(const SaveSteps& steps) {
    // Rights come before any look at the fields.
    if (!Session::MaySave(EditMode))
        return false;
    for (const auto& field : steps.required) {
        if (field.missing()) {
            MsgBox(field.message, platform::vbExclamation);
            if (field.focus && field.focus->isEnabled())
                field.focus->setFocus();
            return false;
        }
    }

    bool InTransaction = false;
    try {
        if (!GenMod::OpenConnection())
            return false;
        // The write lock is taken here, so two seats cannot read the same maximum key.
        GenMod::Conn->BeginTrans();
        InTransaction = true;

        if (!steps.duplicateFields.isEmpty() &&
            GenMod::RecordExists(steps.duplicateFields, steps.duplicateSource())) {
            GenMod::Conn->RollbackTrans();
            GenMod::Conn.reset();
            MsgBox(steps.duplicateMessage, platform::vbExclamation);
            return false;
        }

        if (EditMode) {
            GenMod::Conn->Execute(steps.updateStatement(), -1);
        } else {
            CurrentRowID = GenMod::NextID(steps.keyColumn, steps.table);
            GenMod::Conn->Execute(steps.insertStatement(), -1);
        }
        GenMod::Conn->CommitTrans();
        InTransaction = false;
        GenMod::CloseConnection();
    } catch (const platform::Error& e) {
        GenMod::AbandonConnection(InTransaction);
        MsgBox(e.description(), platform::vbCritical);
        return false;
    }

    MsgBox(steps.savedMessage, platform::vbInformation);
    if (steps.reset)
        steps.reset();
    return true;
}

void CommandForm::refillBelow(const platform::ComboBox* parent, const QString& fields,
                              const QString& sourceBefore, const QString& sourceAfter,
                              platform::ComboBox* target) {
    if (parent->ListIndex() == -1)
        return;
    try {
        if (!GenMod::OpenConnection())
            return;
        GenMod::FillCombo(fields,
                          sourceBefore + QString::number(parent->ItemData(parent->ListIndex())) + sourceAfter,
                          target);
        GenMod::CloseConnection();
    } catch (const platform::Error& e) {
        MsgBox(e.description(), platform::vbCritical);
    }
}

void CommandForm::untrapped(const std::function<void()>& handler) {
    try {
        handler();
    } catch (const platform::Error& e) {
        MsgBox(e.description(), platform::vbCritical);
    }
}
