// Every screen as its toolbar entry opens it, compared with one table: its title, its controls'
// captions, limits and state at opening, and its tab order; then laid out whole with the
// office's own long field names.
#include "addressbooks/frmImpContacts.h"
#include "addressbooks/frmPersonal.h"
#include "addressbooks/frmReferences.h"
#include "app/MDI.h"
#include "app/Startup.h"
#include "classification/frmDocCat.h"
#include "classification/frmDocChildCat.h"
#include "classification/frmDocSubCat.h"
#include "classification/frmDocType.h"
#include "classification/frmFile.h"
#include "index/frmIndexDocument.h"
#include "index/frmSearchDocument.h"
#include "maintenance/frmDataBackup.h"
#include "maintenance/frmLoginDetails.h"
#include "maintenance/frmMoveSoftCopies.h"
#include "maintenance/frmSettings.h"
#include "platform/Controls.h"
#include "support/ScreenDriver.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QDateEdit>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QtTest>

namespace {

// One screen: the toolbar entry that opens it (then ">" and the button of that screen that opens
// it, for a screen opened from another), the screen, its title, the controls hidden at
// opening, what its controls show, and its tab order from the first focus. What a control shows,
// as "name=value" separated by "; ", is by its kind: a label's or a button's text; "cmd" the
// captions of cmd(0), cmd(1), ... joined by "/"; a list view's headers joined by "/", a hidden
// column in brackets; a text box's maximum length, then "ro" when it is read-only and "pw" when it
// shows a password character; a date picker's format, then "today" (no check box) or "null"
// (cleared, with its check box); a check box's 1 or 0; "name.tip" a tool tip.
struct Expected {
    QString entry;
    Form* form;
    QString title;
    QStringList hidden, facts, tabs;
};

QList<Expected> table() {
    QList<Expected> all;
    const auto add = [&](const char* entry, Form& form, const char* title, const char* hidden,
                         const char* facts, const char* tabs) {
        const auto list = [](const char* text, const char* separator) {
            return QString::fromUtf8(text).split(QLatin1String(separator), Qt::SkipEmptyParts);
        };
        all << Expected{entry, &form, title, list(hidden, " "), list(facts, "; "), list(tabs, " ")};
    };
    add("ImgIndexDoc", frmIndexDocument::instance(), "Index Document", "lstDocs",
        "cmd=Reset/Edit/Save/Close/Browse; lblDocDate=Document Date :; Label1=Follow-up Date :; "
        "lblDocType=Document Type :; lblDocCategory=Document Category :; lblDocSubCat=Document "
        "Sub-Category :; lblDocChildCat=Document Child Category :; lblTitle1=Document Title 1 :; "
        "lblTitle2=Document Title 2 :; lblFilePath=Soft Copy File Path :; lblFile=Hard Copy File No. :; "
        "lblBookmark=Bookmark :; lblRemarks=Remarks :; dtpDocDate=dd/MMM/yyyy today; "
        "dtpFollowUp=dd/MMM/yyyy today; txtTitle1=200; txtTitle2=200; txtBookmark=200; txtFilePath=250 "
        "ro; lstDocs=[IndexID]/Title 1/Title 2/Doc. Date/Followup Date/Bookmark; lstDocs.tip=Double click "
        "a record to edit",
        "dtpDocDate dtpFollowUp cboDocType cboDocCategory cboDocSubCategory cboDocChildCategory txtTitle1 "
        "txtTitle2 cmd(4) cboFile txtBookmark txtRemarks lstDocs cmd(0) cmd(1) cmd(2) cmd(3) chkPreview "
        "cmdPrevPage cmdNextPage cmdZoomOut cmdZoomIn scrPreview txtPreviewText");
    add("ImgSearchDoc", frmSearchDocument::instance(), "Search Document", "",
        "cmd=Reset/Close/Print Search List; cmdSearch=Search; lblDocType=Doc. Type :; lblDocCategory=Doc. "
        "Category :; lblDocSubCat=Doc. Sub-Category :; lblDocChildCat=Doc. Child Category :; Label1=File "
        "No. :; lblTitle1=Doc. Title 1 :; lblTitle2=Doc. Title 2 :; lblBookmark=Bookmark :; "
        "lblRemarks=Remarks :; lblSoftCopyText=Soft Copy Text :; lblDocDate=Doc. Date between :; "
        "lblDocDateTo=and :; "
        "lblFollowupdate=Follow-up Date between :; lblFollowupDateTo=and :; lblNoOfRecords=(0 Record/s "
        "found); dtpDocFrom=dd/MMM/yyyy null; dtpDocTo=dd/MMM/yyyy null; dtpFollowUpFrom=dd/MMM/yyyy "
        "null; dtpFollowUpTo=dd/MMM/yyyy null; lstList=[IndexID]/Title 1/Title 2/Doc. Date/Followup "
        "Date/Bookmark/Remark/File No./[File Path]; lstList.tip=Double click a record to quickly view its "
        "contents",
        "cboDocType cboDocCategory cboDocSubCategory cboDocChildCategory cboFileNo txtTitle1 txtTitle2 "
        "txtBookmark txtRemarks dtpDocFrom dtpDocTo dtpFollowUpFrom dtpFollowUpTo txtSoftCopyText cmdSearch "
        "lstList "
        "cmd(0) cmd(1) cmd(2) chkPreview cmdPrevPage cmdNextPage cmdZoomOut cmdZoomIn scrPreview "
        "txtPreviewText");
    add("ImgDocType", frmDocType::instance(), "Document Type", "lstType",
        "cmd=Reset/Edit/Save/Close; lblDocType=Document Type :; txtDocType=25; lstType.tip=Double click a "
        "record to edit",
        "txtDocType lstType cmd(0) cmd(1) cmd(2) cmd(3)");
    add("ImgDocCat", frmDocCat::instance(), "Document Category", "lstCategory",
        "cmd=Reset/Edit/Save/Close; lblDocCategory=Document Category :; txtDocCategory=25; "
        "lstCategory.tip=Double click a record to edit",
        "txtDocCategory lstCategory cmd(0) cmd(1) cmd(2) cmd(3)");
    add("ImgDocSubCat", frmDocSubCat::instance(), "Document Sub-Category", "lstSubCategory",
        "cmd=Reset/Edit/Save/Close; lblDocCategory=Document Category :; lblDocSubCategory=Document "
        "Sub-Category :; txtDocSubCat=25; lstSubCategory.tip=Double click a record to edit",
        "cboDocCategory txtDocSubCat lstSubCategory cmd(0) cmd(1) cmd(2) cmd(3)");
    add("ImgDocChildCat", frmDocChildCat::instance(), "Document Child Category", "lstChildCategory",
        "cmd=Reset/Edit/Save/Close; lblDocCategory=Document Category :; lblDocSubCategory=Document "
        "Sub-Category :; lblDocChildCategory=Document Child Category :; txtChildCat=25; "
        "lstChildCategory.tip=Double click a record to edit",
        "cboDocCategory cboDocSubCategory txtChildCat lstChildCategory cmd(0) cmd(1) cmd(2) cmd(3)");
    add("ImgFile", frmFile::instance(), "File", "lstFile",
        "cmd=Reset/Edit/Save/Close/Print List; lblEmail=File Number :; Label1=Particulars :; "
        "txtFileNo=25; txtParticulars=25; lstFile=[FileID]/File number/Particulars; lstFile.tip=Double "
        "click a record to edit",
        "txtFileNo txtParticulars lstFile cmd(0) cmd(1) cmd(2) cmd(3) cmd(4)");
    add("ImgInternetRef", frmReferences::instance(), "Internet References", "fraList",
        "cmd=Reset/Edit/Save/Close/Print List; lblName=Reference Name :; Label1=Particulars :; "
        "lblPhone=Online Link :; lblSearchRef=Reference Name containing :; lblShowAll=Show all; "
        "cmdSearch=Search; chkShowAll=1; txtLink=2147483647; txtLink.tip=Paste here links copied from your "
        "browsers address "
        "bar; lstRef=[Ref ID]/Reference Name/Online Link; lstRef.tip=Double click a record to edit",
        "txtRefName txtParticulars txtLink txtSearchName cmdSearch chkShowAll lstRef cmd(0) cmd(1) cmd(2) "
        "cmd(3) cmd(4)");
    add("ImgImpContact", frmImpContacts::instance(), "Important Contacts", "fraList",
        "cmd=Reset/Edit/Save/Close/Print List; lblName=Name :; lblAddress=Address :; lblPhone=Phone No. "
        ":; lblCell=Cell No. :; lblFax=Fax No. :; lblEmail=Email :; Label1=Remarks :; "
        "lblSearchRef=Contact Name containing :; lblShowAll=Show all; cmdSearch=Search; chkShowAll=0; "
        "txtAdd1=2147483647; "
        "lstContacts=[Contact ID]/Contact Name/Phone/Cell/Email",
        "txtName txtAdd1 txtAdd2 txtAdd3 txtPhone txtCell txtFax txtEmail txtRemarks txtSearchName "
        "cmdSearch chkShowAll lstContacts cmd(0) cmd(1) cmd(2) cmd(3) cmd(4)");
    add("ImgPersonal", frmPersonal::instance(), "Personal details", "",
        "cmd=Reset/Save/Close/Print Letterhead; lblName=Name :; lblAddress=Address :; lblPhone=Phone No. "
        ":; lblCell=Cell No. :; lblFax=Fax No. :; lblEmail=Email :",
        "txtName txtAdd1 txtAdd2 txtAdd3 txtPhone txtCell txtFax txtEmail cmd(0) cmd(1) cmd(2) cmd(3)");
    add("ImgSettings", frmSettings::instance(), "Settings", "lblProcess",
        "cmd=Save/Close/Browse/Browse/Browse/Browse; Label1=Program paths; lblImg=Image Viewer / Editor "
        ":; lblWord=Word Viewer / Editor :; lblExcel=Excel Viewer / Editor :; lblPDF=PDF Viewer / Editor "
        ":; lblOcrLanguages=OCR Languages :; cmdSoftCopies=Soft Copies...; Label4=Customize Field Names; "
        "lblDocType=Document Type :; lblDocCategory=Document Category :; "
        "lblDocSubCat=Document Sub-Category :; lblDocChildCat=Document Child Category :; "
        "lblDocTitle1=Document Title 1 :; lblDocTitle2=Document Title 2 :; Label2=Old Records; "
        "Label3=Delete old records before; lblDeleteFiles=Delete related files stored on Hard disk also; "
        "cmdDelete=Proceed; dtpDelete=dd/MMM/yyyy today; chkFiles=0; cmdMoveSoftCopies=Move Soft Copies...",
        "txtImagePath cmd(2) txtWordPath cmd(3) txtExcelPath cmd(4) txtPDFPath cmd(5) lstOcrLanguages "
        "cmdSoftCopies txtDocType "
        "txtDocCat txtDocSubCat txtDocChildCat txtDocTitle1 txtDocTitle2 dtpDelete chkFiles cmdDelete "
        "cmdMoveSoftCopies cmd(0) cmd(1)");
    add("ImgLogin", frmLoginDetails::instance(), "Login details", "lstUsers",
        "cmd=Reset/Edit/Save/Close; lblEmail=User name :; Label1=Password :; lblView=Only View :; "
        "lblSave=Save data :; lblModify=Modify data :; txtUserName=25; txtPassword=25 pw; chkView=1; "
        "chkAdd=0; chkEdit=0",
        "txtUserName txtPassword chkView chkAdd chkEdit lstUsers cmd(0) cmd(1) cmd(2) cmd(3)");
    add("ImgDataBackup", frmDataBackup::instance(), "Data Backup", "",
        "cmd=Close; Label1=Step 1 :; Label2=Step 2 :; lblBackupPath=Backup Path :; cmdRepair=Check && "
        "Repair Errors in Database; cmdBrowse=Browse; cmdStartBackup=Start Backup; txtPath=2147483647 ro",
        "cmdRepair cmdBrowse cmdStartBackup cmd");
    add("ImgSettings>cmdMoveSoftCopies", frmMoveSoftCopies::instance(), "Move Soft Copies", "",
        "lblOldFolder=Old folder :; lblNewFolder=New folder :; cmdBrowseOld=Browse; cmdBrowseNew=Browse; "
        "lblCounts=; cmdCount=Count; cmdMove=Move; cmdClose=Close; txtOldFolder=2147483647; "
        "txtNewFolder=2147483647",
        "txtOldFolder cmdBrowseOld txtNewFolder cmdBrowseNew cmdCount cmdMove cmdClose");
    return all;
}

// What the control `name` of `window` shows, in the form of the table.
QString fact(QWidget* window, const QString& name) {
    if (name == QLatin1String("cmd")) {
        QStringList captions;
        for (int i = 0; auto* button = window->findChild<QAbstractButton*>(QStringLiteral("cmd(%1)").arg(i));
             ++i)
            captions << button->text();
        if (auto* single = window->findChild<QAbstractButton*>(QStringLiteral("cmd")))
            captions << single->text();
        return captions.join(QLatin1Char('/'));
    }
    if (name.endsWith(QLatin1String(".tip")))
        return window->findChild<QWidget*>(name.chopped(4))->toolTip();
    QWidget* control = window->findChild<QWidget*>(name);
    if (!control)
        return QStringLiteral("(missing)");
    if (auto* label = qobject_cast<QLabel*>(control))
        return label->text();
    if (auto* box = qobject_cast<QCheckBox*>(control))
        return box->isChecked() ? QStringLiteral("1") : QStringLiteral("0");
    if (auto* button = qobject_cast<QAbstractButton*>(control))
        return button->text();
    if (auto* box = qobject_cast<QLineEdit*>(control))
        return QString::number(box->maxLength()) + (box->isReadOnly() ? QStringLiteral(" ro") : QString()) +
               (box->echoMode() == QLineEdit::Password ? QStringLiteral(" pw") : QString());
    if (auto* picker = qobject_cast<platform::DatePicker*>(control)) {
        const bool today = picker->Value().toDate() == QDate::currentDate() && picker->checkBox()->isHidden();
        const bool null = !picker->Value().isValid() && !picker->checkBox()->isHidden();
        return picker->customFormat() + (today  ? QStringLiteral(" today")
                                         : null ? QStringLiteral(" null")
                                                : QStringLiteral(" ?"));
    }
    if (auto* list = qobject_cast<platform::ListView*>(control)) {
        QStringList headers;
        for (int c = 0; c < list->model()->columnCount(); ++c) {
            const QString header = list->model()->headerData(c, Qt::Horizontal).toString();
            headers << (list->isColumnHidden(c) ? QLatin1Char('[') + header + QLatin1Char(']') : header);
        }
        return headers.join(QLatin1Char('/'));
    }
    return QStringLiteral("(no fact)");
}

} // namespace

class TestScreens : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;

    QWidget* open(const Expected& e) {
        MDI::instance().entryClick(e.entry.section(QLatin1Char('>'), 0, 0));
        if (const QString button = e.entry.section(QLatin1Char('>'), 1); !button.isEmpty())
            testsupport::press(frmSettings::instance(), button);
        return e.form->window();
    }

  private slots:
    void init() {
        for (const Expected& e : table())
            testsupport::addScreen(*e.form);
        env = testsupport::startCase();
        MDI::setOnEnd([] {});
        wireScreens();
        MDI::instance().Show();
        MDI::instance().window()->resize(1024, 720);
    }
    void cleanup() {
        MDI::instance().Unload();
        testsupport::endCase(env);
    }

    void everyScreenAsTheTableHasIt() {
        for (const Expected& e : table()) {
            QWidget* w = open(e);
            QVERIFY2(w && qobject_cast<QMdiSubWindow*>(w->parentWidget()), qPrintable(e.entry));
            QCOMPARE(w->windowTitle(), e.title);
            for (const QString& f : e.facts) {
                const QString name = f.section(QLatin1Char('='), 0, 0);
                QCOMPARE(e.title + QLatin1Char(' ') + name + QLatin1Char('=') + fact(w, name),
                         e.title + QLatin1Char(' ') + f);
                // A field's caption is its buddy and names it to assistive technology.
                auto* label = w->findChild<QLabel*>(name);
                if (label && label->text().endsWith(QLatin1Char(':')))
                    QVERIFY2(label->buddy() && (qobject_cast<QAbstractButton*>(label->buddy()) ||
                                                label->buddy()->accessibleName() == label->text()),
                             qPrintable(name));
            }
            for (const QString& name : e.hidden)
                QVERIFY2(w->findChild<QWidget*>(name)->isHidden(), qPrintable(name));
            QCOMPARE(testsupport::tabOrder(w), e.tabs);
        }
        QCOMPARE(testsupport::messages(), QStringList());
    }

    // Move Soft Copies works by the keyboard alone; Escape keeps it and its text, Ctrl+F4 closes it.
    void moveSoftCopiesByKeyboard() {
        QWidget* w = open(table().constLast());
        QVERIFY(QTest::qWaitForWindowActive(MDI::instance().window()));
        auto* box = w->findChild<QLineEdit*>(QStringLiteral("txtOldFolder"));
        box->setFocus();
        for (const char* keys : {"/nowhere", "\t", "\t", "/tmp", "\t", "\t"})
            QTest::keyClicks(QApplication::focusWidget(), keys);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QVERIFY(
            w->findChild<QLabel*>(QStringLiteral("lblCounts"))->text().startsWith(QLatin1String("0 doc")));
        QTest::keyClick(box, Qt::Key_Escape);
        QVERIFY(frmMoveSoftCopies::instance().isLoaded());
        QCOMPARE(box->text(), QStringLiteral("/nowhere"));
        QTest::keyClick(box, Qt::Key_F4, Qt::ControlModifier);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!frmMoveSoftCopies::instance().isLoaded());
    }

    // Every label and button shows whole inside its screen, and the screen inside the main
    // window, with the office's long field names; the record screens with their list shown. An
    // emptied name leaves the frame without a title, not with the design caption.
    void everyScreenShowsWholeWithLongFieldNames() {
        env->exec("insert into FieldCaptions values('Department of Records','Section of the Office',"
                  "'Sub-Section of Section','Folder in the Cabinet','Subject of the Document','Reference')");
        for (const Expected& e : table()) {
            QWidget* w = open(e);
            auto* edit = w->findChild<QAbstractButton*>(QStringLiteral("cmd(1)"));
            if (edit && edit->text() == QLatin1String("Edit"))
                edit->click();
            QCoreApplication::processEvents();
            for (auto* label : w->findChildren<QLabel*>()) {
                if (label->isHidden() || label->text().isEmpty())
                    continue;
                QVERIFY2(label->width() >= label->sizeHint().width(), qPrintable(label->objectName()));
                QVERIFY2(w->rect().contains(QRect(label->mapTo(w, QPoint(0, 0)), label->size())),
                         qPrintable(label->objectName()));
            }
            for (auto* button : w->findChildren<QAbstractButton*>())
                // Unnamed buttons are parts of a compound control, such as a date box's drop button.
                if (!button->isHidden() && !button->objectName().isEmpty() &&
                    !button->objectName().startsWith(QLatin1String("qt_")))
                    QVERIFY2(button->width() >= button->sizeHint().width(), qPrintable(button->objectName()));
            QVERIFY2(MDI::instance().area()->viewport()->rect().contains(w->parentWidget()->geometry()),
                     qPrintable(e.entry));
            e.form->Unload();
        }
        env->exec("update FieldCaptions set DocType=''");
        QWidget* w = open(table().at(2));
        QCOMPARE(w->windowTitle(), QString());
        QCOMPARE(qobject_cast<QMdiSubWindow*>(w->parentWidget())->windowTitle(), QString());
        QCOMPARE(testsupport::messages(), QStringList());
    }
};

QTEST_MAIN(TestScreens)
#include "tst_screens.moc"
