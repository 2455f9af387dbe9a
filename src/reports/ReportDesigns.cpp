#include "ReportDesigns.h"

namespace reports::designs {

namespace {

constexpr double W = kToRightMargin;

// The tables below spell names and captions as plain literals, in UTF-8.
struct Utf8 {
    Utf8(const char* text) : value(QString::fromUtf8(text)) {} // NOLINT: the tables' literals
    QString value;
};

// Type faces of the lists: a centred title, bold headings between rules, plain rows.
const FontSpec kTitle{15.0, true};
const FontSpec kHeading{9.0, true};
const FontSpec kRow{9.0};
const FontSpec kFooter{8.0};
const FontSpec kAddress{8.5};
// The letterhead is set in a serif face.
const FontSpec kLhName{18.0, true, false, true};
const FontSpec kLhLine{10.5, false, false, true};
const FontSpec kLhLabel{10.0, true, false, true};
const FontSpec kLhValue{10.0, false, false, true};
// The letterhead's captions end this far before their values.
constexpr double kLhGap = 3.0;

// The lists' defaults: labels are set as headings, text boxes as rows.
Control heading(const Utf8& name, const Utf8& caption, double left, double top, double width, double height,
                FontSpec font = kHeading, Align align = Align::Left) {
    return label(name.value, caption.value, left, top, width, height, font, align);
}

enum Grow { Fixed, Grows };

// A control placed from the middle of the body rather than its left edge.
Control mid(Control c) {
    c.anchor = Anchor::Middle;
    return c;
}

// A caption that grows downwards to hold all of its text.
Control growing(Control c) {
    c.canGrow = true;
    return c;
}

// A caption centred together with its value as one unit.
Control centredWith(Control c, const Utf8& partner, double gap) {
    c.centredWith = partner.value;
    c.unitGap = gap;
    return c;
}

Control box(const Utf8& name, const Utf8& field, double left, double top, double width, double height,
            Grow grow = Fixed, FontSpec font = kRow, Align align = Align::Left) {
    return textBox(name.value, field.value, left, top, width, height, grow == Grows, font, align);
}

Control rule(const Utf8& name, double top, double left = 0, double width = W, double thickness = 0.8) {
    return reports::rule(name.value, top, left, width, thickness);
}

ReportDesign design(const QString& name, const QString& title, const QString& dataMember,
                    Section reportHeader, Section pageHeader, Section detail, Section pageFooter,
                    Section reportFooter) {
    ReportDesign d;
    d.name = name;
    d.title = title;
    d.dataMember = dataMember;
    d.sections = {reportHeader, pageHeader, detail, pageFooter, reportFooter};
    return d;
}

Section reportHeader(double height = 0, QVector<Control> controls = {}) {
    return section(QStringLiteral("ReportHeader"), SectionKind::ReportHeader, height, std::move(controls));
}
Section pageHeader(double height, QVector<Control> controls = {}) {
    return section(QStringLiteral("PageHeader"), SectionKind::PageHeader, height, std::move(controls));
}
Section detail(const Utf8& command, double height, QVector<Control> controls) {
    return section(command.value + QStringLiteral("_Detail"), SectionKind::Detail, height,
                   std::move(controls));
}
Section pageFooter(double height, QVector<Control> controls = {}) {
    return section(QStringLiteral("PageFooter"), SectionKind::PageFooter, height, std::move(controls));
}
Section reportFooter() {
    return section(QStringLiteral("ReportFooter"), SectionKind::ReportFooter, 0);
}

// The page number of the lists, centred under a rule.
Section numberedFooter(const Utf8& labelName, const Utf8& caption, const Utf8& ruleName) {
    QVector<Control> controls;
    if (!ruleName.value.isEmpty())
        controls << rule(ruleName, 8, 0, W, 0.5);
    controls << heading(labelName, caption, 0, 13, W, 12, kFooter, Align::Center);
    return pageFooter(28, controls);
}

} // namespace

// The designs read as tables: name, caption or field, left, top, width, height, and style.
// clang-format off

ReportDesign RptFileList() {
    return design(QStringLiteral("RptFileList"), QStringLiteral("File List"), QStringLiteral("cmdFileList"),
                  reportHeader(),
                  pageHeader(62, {
                      heading("Label4", "File List",        0,  0, W,   22, kTitle, Align::Center),
                      rule ("Line2",                      34),
                      heading("Label1", "File Number",      4, 40, 140, 13),
                      heading("Label2", "Particulars",    154, 40, W,   13),
                      rule ("Line3",                      57),
                  }),
                  detail("cmdFileList", 19, {
                      box("txtFileNumber", "FileNumber",    4, 3, 140, 13, Grows),
                      box("txtParticulars", "Particulars", 154, 3, W,   13, Grows),
                  }),
                  numberedFooter("Label3", "%p of %P", "Line1"),
                  reportFooter());
}

ReportDesign RptInternetRef() {
    return design(QStringLiteral("RptInternetRef"), QStringLiteral("Internet References"),
                  QStringLiteral("cmdInternetRefList"),
                  reportHeader(),
                  pageHeader(62, {
                      heading("Label4", "Internet References List",        0,  0, W,   22, kTitle, Align::Center),
                      rule ("Line1",                                     34),
                      heading("Label1", "Reference Name & Particulars",    4, 40, 230, 13),
                      heading("Label3", "Online Link",                   246, 40, W,   13),
                      rule ("Line2",                                     57),
                  }),
                  // The link keeps its box, which takes the column and the band's height: three
                  // lines, broken anywhere when the link has no blanks.
                  detail("cmdInternetRefList", 40, {
                      box("txtRefName",     "RefName",       4,  3, 230, 13,   Fixed, FontSpec{9.0, true}),
                      box("txtParticulars", "Particulars",   4, 17, 230, 13,   Grows),
                      box("txtOnlineLink",  "OnlineLink",  246,  3, W,   31.5),
                  }),
                  numberedFooter("Label2", "%p of %P", "Line4"),
                  reportFooter());
}

ReportDesign RptContactList() {
    // Columns: name, the three address lines, the four numbers with their labels, remarks.
    return design(QStringLiteral("RptContactList"), QStringLiteral("Important Contact List"),
                  QStringLiteral("cmdContactList"),
                  reportHeader(),
                  pageHeader(62, {
                      heading("Label1", "Important Contact List",   0,  0, W,   22, kTitle, Align::Center),
                      rule ("Line1",                              34),
                      heading("Label2", "Contact Name",             4, 40,  76, 13),
                      heading("Label3", "Address",                 84, 40, 174, 13),
                      heading("Label4", "Contact Details",        262, 40, 144, 13),
                      heading("Label5", "Remarks",                412, 40, W,   13),
                      rule ("Line2",                              57),
                  }),
                  // The address lines are set a little smaller, so that lines of forty letters fit.
                  detail("cmdContactList", 62, {
                      box  ("txtFullName", "FullName",   4,  3,  76, 12, Grows, FontSpec{9.0, true}),
                      box  ("txtAdd1",     "Add1",      84,  3, 174, 12, Fixed, kAddress),
                      box  ("txtAdd2",     "Add2",      84, 16, 174, 12, Fixed, kAddress),
                      box  ("txtAdd3",     "Add3",      84, 29, 174, 12, Fixed, kAddress),
                      heading("Label7",      "Phone:",   262,  3,  30, 12, kRow),
                      box  ("txtPhone",    "Phone",    294,  3, 112, 12),
                      heading("Label8",      "Cell:",    262, 16,  30, 12, kRow),
                      box  ("txtCell",     "Cell",     294, 16, 112, 12),
                      heading("Label9",      "Fax:",     262, 29,  30, 12, kRow),
                      box  ("txtFax",      "Fax",      294, 29, 112, 12),
                      heading("Label10",     "Email:",   262, 42,  30, 12, kRow),
                      box  ("txtEmail",    "Email",    294, 42, 112, 12, Grows),
                      box  ("txtRemarks",  "Remarks",  412,  3, W,   12, Grows),
                      rule ("Line3",                    58, 0, W, 0.4),
                  }),
                  numberedFooter("Label6", "Page %p of %P", ""),
                  reportFooter());
}

ReportDesign rptSearchReport() {
    // Four columns of two lines each; the headings wrap inside their two-line boxes, and the
    // query line grows to hold the whole sentence of the criteria.
    return design(QStringLiteral("rptSearchReport"), QStringLiteral("Search Result"),
                  QStringLiteral("cmdSearchResult"),
                  reportHeader(20, {
                      heading("Label2",           "Query:",  0, 0, 42, 13, FontSpec{10.0, true}),
                      growing(heading("lblQuery", "Query",  44, 0, W,  13, FontSpec{10.0})),
                  }),
                  pageHeader(38, {
                      rule ("Line2",                                  0),
                      heading("lblDocTitle1", "Title 1 / Title 2",      4,  5, 150, 13),
                      heading("lblDocTitle2", "Title 1 / Title 2",      4, 18, 150, 13),
                      heading("Label3",       "Doc. Dt / Follow-Up Dt.", 160, 5, 68, 26),
                      heading("Label5",       "Bookmark / Remarks:",   246,  5, 130, 26),
                      heading("Label4",       "File Number / File Path", 382, 5, W,  26),
                      rule ("Line1",                                 35),
                  }),
                  detail("cmdSearchResult", 33, {
                      box ("txtTitle1",       "Title1",         4,  3, 150, 12, Grows),
                      box ("txtTitle2",       "Title2",         4, 15, 150, 12, Grows),
                      box ("txtDocDate",      "DocDate",      160,  3,  80, 12),
                      box ("txtFollowupDate", "FollowupDate", 160, 15,  80, 12),
                      box ("txtBookmark",     "Bookmark",     246,  3, 130, 12, Grows),
                      box ("txtRemarks",      "Remarks",      246, 15, 130, 12, Grows),
                      box ("txtFileNumber",   "FileNumber",   382,  3, W,   12),
                      box ("txtFilePath",     "FilePath",     382, 15, W,   12, Grows),
                      rule("Line3",                            30, 0, W, 0.4),
                  }),
                  numberedFooter("Label6", "%p of %P", ""),
                  reportFooter());
}

// The letterhead: the head prints once at the top and the 4-inch footer keeps the rest of
// the sheet, below the writing space, free.
static Section letterFooter() { return pageFooter(288); }

ReportDesign RptLetterHead() {
    // Left-aligned head: everything starts at the left margin; the captions end just before
    // their values.
    return design(QStringLiteral("RptLetterHead"), QStringLiteral("Letterhead"), QStringLiteral("cmdLetterHead"),
                  reportHeader(), pageHeader(0),
                  detail("cmdLetterHead", 122, {
                      box  ("txtFullName", "FullName",   0,  0, W,   28, Fixed, kLhName),
                      box  ("txtAdd1",     "Add1",       0, 32, W,   14, Fixed, kLhLine),
                      box  ("txtAdd2",     "Add2",       0, 46, W,   14, Fixed, kLhLine),
                      box  ("txtAdd3",     "Add3",       0, 60, W,   14, Fixed, kLhLine),
                      heading("Label2",      "Cell :",     0, 80,  24, 14, kLhLabel, Align::Right),
                      box  ("txtCell",     "Cell",      24 + kLhGap, 80, 120, 14, Fixed, kLhValue),
                      heading("Label1",      "Phone :",  160, 80,  34, 14, kLhLabel, Align::Right),
                      box  ("txtPhone",    "Phone",    194 + kLhGap, 80, 120, 14, Fixed, kLhValue),
                      heading("Label3",      "Fax :",    330, 80,  24, 14, kLhLabel, Align::Right),
                      box  ("txtFax",      "Fax",      354 + kLhGap, 80, W,   14, Fixed, kLhValue),
                      // The mail address may run to the right margin.
                      heading("Label4",      "Email :",    0, 96,  32, 14, kLhLabel, Align::Right),
                      box  ("txtEmail",    "Email",     32 + kLhGap, 96, W,   14, Fixed, kLhValue),
                      rule ("Line1",                   116, 0, W, 1.2),
                  }),
                  letterFooter(), reportFooter());
}

ReportDesign RptLetterHead2() {
    // Centred head: the name and address span the width; the numbers sit further in, the
    // wide "Cell : " label ending at its field, and the mail address, caption and value as
    // one unit, in the middle below.
    return design(QStringLiteral("RptLetterHead2"), QStringLiteral("Letterhead"), QStringLiteral("cmdLetterHead"),
                  reportHeader(), pageHeader(0),
                  detail("cmdLetterHead", 122, {
                      box  ("txtFullName", "FullName",   0,  0, W,   28, Fixed, kLhName, Align::Center),
                      box  ("txtAdd1",     "Add1",       0, 32, W,   14, Fixed, kLhLine, Align::Center),
                      box  ("txtAdd2",     "Add2",       0, 46, W,   14, Fixed, kLhLine, Align::Center),
                      box  ("txtAdd3",     "Add3",       0, 60, W,   14, Fixed, kLhLine, Align::Center),
                      // The row below counts from the middle of the body, so it stays centred
                      // under the name on any paper.
                      mid(heading("Label2",  "Cell : ", -220, 80,  72, 14, kLhLabel, Align::Right)),
                      mid(box  ("txtCell",   "Cell",    -148 + kLhGap, 80, 110, 14, Fixed, kLhValue)),
                      mid(heading("Label1",  "Phone :",  -31, 80,  33, 14, kLhLabel, Align::Right)),
                      mid(box  ("txtPhone",  "Phone",      2 + kLhGap, 80, 110, 14, Fixed, kLhValue)),
                      mid(heading("Label3",  "Fax :",    121, 80,  23, 14, kLhLabel, Align::Right)),
                      mid(box  ("txtFax",    "Fax",      144 + kLhGap, 80,  96, 14, Fixed, kLhValue)),
                      centredWith(heading("Label4", "Email :", 0, 96, 32, 14, kLhLabel), "txtEmail", kLhGap),
                      box  ("txtEmail",    "Email",     32 + kLhGap, 96, W,   14, Fixed, kLhValue),
                      rule ("Line1",                   116, 0, W, 1.2),
                  }),
                  letterFooter(), reportFooter());
}

// clang-format on

ReportDesign byName(const QString& reportName) {
    using Maker = ReportDesign (*)();
    static const QList<QPair<QString, Maker>> all = {
        {QStringLiteral("RptFileList"), &RptFileList},
        {QStringLiteral("RptInternetRef"), &RptInternetRef},
        {QStringLiteral("RptContactList"), &RptContactList},
        {QStringLiteral("rptSearchReport"), &rptSearchReport},
        {QStringLiteral("RptLetterHead"), &RptLetterHead},
        {QStringLiteral("RptLetterHead2"), &RptLetterHead2},
    };
    for (const auto& [name, make] : all)
        if (name.compare(reportName, Qt::CaseInsensitive) == 0)
            return make();
    return ReportDesign();
}

} // namespace reports::designs
