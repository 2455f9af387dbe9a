#pragma once

#include <QHash>
#include <QList>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>
#include <memory>

class QFont;
class QPainter;
class QPaintDevice;
class QImage;

// The banded report engine: a design is plain data (sections of controls placed in points),
// the layout turns design plus rows into pages of positioned items, and one paint routine
// puts a page on any device (preview image, PDF, printer).
namespace reports {

// Widths of this value stretch a control to the right margin, whatever the paper.
inline constexpr double kToRightMargin = -1.0;

enum class ControlKind { Label, TextBox, Line };
enum class Align { Left, Center, Right };
// Where a control's left position counts from: the body's left edge, or its middle, so that
// a centred arrangement stays centred on any paper.
enum class Anchor { Left, Middle };

struct FontSpec {
    double pointSize = 9.0;
    bool bold = false;
    bool italic = false;
    bool serif = false;
};

// One control of a section. Positions are points from the section's top-left corner.
class Control {
  public:
    QString name;
    ControlKind kind = ControlKind::Label;
    QString caption;   // Label: the text, with %p and %P for page and page count
    QString dataField; // TextBox: the field of the report's command
    double left = 0, top = 0, width = 0, height = 0;
    FontSpec font;
    Align align = Align::Left;
    Anchor anchor = Anchor::Left;
    bool canGrow = false; // the box grows to hold its text and pushes the band down
    // Names a control that this one is centred with as one unit: both keep one line, each
    // as wide as its text, `unitGap` points apart, and the pair stands centred in the span
    // of their two design boxes (a caption and its value in a centred head, say).
    QString centredWith;
    double unitGap = 0;
    double lineWidth = 0.8; // Line only, in points

    const QString& Caption() const { return caption; }
    void setCaption(const QString& text) { caption = text; }
};

enum class SectionKind { ReportHeader, PageHeader, Detail, PageFooter, ReportFooter };

class Section {
  public:
    QString name;
    SectionKind kind = SectionKind::Detail;
    double height = 0;
    QVector<Control> controls;

    // Throws platform::Error when the section holds no control of that name.
    Control& Controls(const QString& controlName);
    const Control& Controls(const QString& controlName) const;
    bool hasControl(const QString& controlName) const;
};

// Builders from which each design is written as a table of controls. Positions in points.
Control label(const QString& name, const QString& caption, double left, double top, double width,
              double height, FontSpec font = {}, Align align = Align::Left);
Control textBox(const QString& name, const QString& field, double left, double top, double width,
                double height, bool grows = false, FontSpec font = {}, Align align = Align::Left);
// A horizontal rule, across the body unless a width is given.
Control rule(const QString& name, double top, double left = 0, double width = kToRightMargin,
             double thickness = 0.8);
Section section(const QString& name, SectionKind kind, double height, QVector<Control> controls = {});

// A report design: title, the command it reads and its five sections in print order.
class ReportDesign {
  public:
    QString name;
    QString title;
    QString dataMember;
    QVector<Section> sections;

    // Throws platform::Error when the design has no section of that name.
    Section& Sections(const QString& sectionName);
    const Section& Sections(const QString& sectionName) const;
    const Section* section(SectionKind kind) const;
};

// Rows the report prints, read once per layout.
class ReportData {
  public:
    virtual ~ReportData() = default;
    virtual int rowCount() const = 0;
    // The field's value as text; empty for NULL or for a field the row does not hold.
    virtual QString value(int row, const QString& field) const = 0;
};

// Rows held in memory, fields found without regard to case.
class MemoryData : public ReportData {
  public:
    MemoryData() = default;
    explicit MemoryData(QVector<QHash<QString, QString>> rows);
    void addRow(const QHash<QString, QString>& row);
    int rowCount() const override { return int(m_rows.size()); }
    QString value(int row, const QString& field) const override;

  private:
    QVector<QHash<QString, QString>> m_rows; // keys lower-cased
};

// Paper and margins, in points.
struct PageSetup {
    QSizeF paper;
    double marginLeft = 54, marginTop = 43, marginRight = 54, marginBottom = 43;

    double bodyWidth() const { return paper.width() - marginLeft - marginRight; }
    double bodyHeight() const { return paper.height() - marginTop - marginBottom; }

    static PageSetup a4();
    static PageSetup letter();
    // The paper of the default printer, or else the one the locale uses (Letter in the US).
    static PageSetup systemDefault();
};

// One positioned thing on a page: a line of text or a ruled line. Rects are in points from
// the paper's top-left corner.
struct PageItem {
    ControlKind kind = ControlKind::Label;
    QString control; // the design control this came from
    QString section;
    QRectF rect; // a text line's box; for a Line, from top-left to bottom-right
    QString text;
    FontSpec font;
    Align align = Align::Left;
    double lineWidth = 0;
};

struct Page {
    QVector<PageItem> items;

    // The text lines of a control on this page, top to bottom.
    QStringList textOf(const QString& control) const;
    // All text of the page, one entry per line item, in reading order.
    QStringList texts() const;
};

struct LaidOutReport {
    PageSetup setup;
    QVector<Page> pages;
};

// Lays the report out on pages. Page headers and footers go on every page, the report
// header before the first page header, the report footer after the last row. A band that
// does not fit on the rest of a page starts the next one; a band taller than a page is split
// between lines.
LaidOutReport layoutReport(const ReportDesign& design, const ReportData& data, const PageSetup& setup);

// Paints one page on a device that stands at the paper's top-left corner, scaling points to
// the device's resolution.
void paintPage(QPainter& painter, const Page& page);

// A page as an image at the given resolution, white paper.
QImage renderPage(const LaidOutReport& report, int pageIndex, double dotsPerInch);

// The font a spec is measured and painted in: one of the faces that ship with the program,
// loaded on first use. Throws platform::Error ("The report font '...' could not be loaded.")
// when the face cannot be loaded or the name resolves to another face.
QFont reportFont(const FontSpec& spec);

// Text measurement shared by layout and tests, in points.
double lineHeight(const FontSpec& font);
QStringList wrapText(const QString& text, const FontSpec& font, double width);
// The first line of the text as a one-line box of that width prints it: cut, and ended with
// the mark "…", when it is too wide or further lines of the text are lost.
QString clipToWidth(const QString& text, const FontSpec& font, double width);

} // namespace reports
