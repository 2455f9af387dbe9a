#include "ReportEngine.h"

#include "datastore/Errors.h"
#include "platform/Error.h"

#include <QFile>
#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QImage>
#include <QLocale>
#include <QPageSize>
#include <QPainter>
#include <QPrinterInfo>
#include <QRawFont>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

// The report faces are compiled into this static library; its resources are registered by
// hand, since nothing else refers to them.
static void initReportFonts() {
    Q_INIT_RESOURCE(report_fonts);
}

namespace reports {

namespace {

[[noreturn]] void notFound(const QString& what) {
    throw db::itemNotFound(what);
}

// Text is measured on a fine device so that layouts do not depend on the screen, and scaled
// back to points.
constexpr int kMeasureDpi = 1200;
constexpr double kMeasureScale = kMeasureDpi / 72.0;

const QPaintDevice& measureDevice() {
    static const QImage device = [] {
        QImage image(1, 1, QImage::Format_RGB32);
        const int dpm = qRound(kMeasureDpi / 0.0254);
        image.setDotsPerMeterX(dpm);
        image.setDotsPerMeterY(dpm);
        return image;
    }();
    return device;
}

// The faces the reports are set in ship inside the program (see CMakeLists.txt), so that a
// page measures, previews, exports and prints alike on every machine, whatever fonts the
// machine holds. Each face is registered on first use, named by the family Qt reports for it,
// and checked to be the very face that was loaded: a machine font of the same name but
// another version must not slip in.
QString faceName(const FontSpec& spec) {
    QString name = spec.serif ? QStringLiteral("Liberation Serif") : QStringLiteral("Liberation Sans");
    if (spec.bold)
        name += QStringLiteral(" Bold");
    if (spec.italic)
        name += QStringLiteral(" Italic");
    return name;
}

QString facePath(const FontSpec& spec) {
    const QString style = spec.bold && spec.italic ? QStringLiteral("BoldItalic")
                          : spec.bold              ? QStringLiteral("Bold")
                          : spec.italic            ? QStringLiteral("Italic")
                                                   : QStringLiteral("Regular");
    return QStringLiteral(":/reports/fonts/Liberation%1-%2.ttf")
        .arg(spec.serif ? QStringLiteral("Serif") : QStringLiteral("Sans"), style);
}

[[noreturn]] void faceFailed(const FontSpec& spec) {
    throw platform::Error(platform::ErrFileNotFound,
                          QStringLiteral("The report font '%1' could not be loaded.").arg(faceName(spec)));
}

QFont loadFace(const FontSpec& spec) {
    static const bool prepared = [] {
        initReportFonts();
        // The machine's fonts are read first: a face added after them takes the place of a
        // machine font of the same family, maker and style, while one added before is
        // displaced when Qt reads them.
        QFontDatabase::families();
        return true;
    }();
    Q_UNUSED(prepared);
    QFile file(facePath(spec));
    if (!file.open(QIODevice::ReadOnly))
        faceFailed(spec);
    const QByteArray data = file.readAll();
    const QRawFont loaded(data, 12);
    const int id = QFontDatabase::addApplicationFontFromData(data);
    const QStringList families = id < 0 ? QStringList() : QFontDatabase::applicationFontFamilies(id);
    if (!loaded.isValid() || families.isEmpty())
        faceFailed(spec);
    const QString& family = families.first();
    // When a machine font of another maker bears the same family name, Qt lists the family
    // once per maker, as "Family [Maker]": the name to use is the one that resolves to the
    // face loaded, which is checked down to its header (the revision and the date the face
    // was made).
    QStringList names{family};
    for (const QString& listed : QFontDatabase::families())
        if (listed.startsWith(family + QStringLiteral(" [")))
            names << listed;
    for (const QString& name : std::as_const(names)) {
        QFont font(name);
        font.setBold(spec.bold);
        font.setItalic(spec.italic);
        // Unhinted glyphs scale linearly, so preview, PDF and paper break lines alike.
        font.setHintingPreference(QFont::PreferNoHinting);
        const QRawFont resolved = QRawFont::fromFont(font);
        if (resolved.isValid() && QFontInfo(font).family() == name &&
            resolved.fontTable("head") == loaded.fontTable("head"))
            return font;
    }
    faceFailed(spec);
}

} // namespace

QFont reportFont(const FontSpec& spec) {
    static QHash<int, QFont> faces;
    const int key = (spec.serif ? 4 : 0) | (spec.bold ? 2 : 0) | (spec.italic ? 1 : 0);
    auto it = faces.find(key);
    if (it == faces.end())
        it = faces.insert(key, loadFace(spec));
    QFont font = *it;
    font.setPointSizeF(spec.pointSize);
    return font;
}

namespace {

double advance(const QString& text, const FontSpec& spec) {
    return QFontMetricsF(reportFont(spec), &measureDevice()).horizontalAdvance(text) / kMeasureScale;
}

} // namespace

// ---- design ----------------------------------------------------------------------------

Control& Section::Controls(const QString& controlName) {
    for (auto& c : controls)
        if (c.name.compare(controlName, Qt::CaseInsensitive) == 0)
            return c;
    notFound(controlName);
}

const Control& Section::Controls(const QString& controlName) const {
    return const_cast<Section*>(this)->Controls(controlName);
}

bool Section::hasControl(const QString& controlName) const {
    return std::any_of(controls.begin(), controls.end(), [&](const Control& c) {
        return c.name.compare(controlName, Qt::CaseInsensitive) == 0;
    });
}

Section& ReportDesign::Sections(const QString& sectionName) {
    for (auto& s : sections)
        if (s.name.compare(sectionName, Qt::CaseInsensitive) == 0)
            return s;
    notFound(sectionName);
}

const Section& ReportDesign::Sections(const QString& sectionName) const {
    return const_cast<ReportDesign*>(this)->Sections(sectionName);
}

const Section* ReportDesign::section(SectionKind kind) const {
    for (const auto& s : sections)
        if (s.kind == kind)
            return &s;
    return nullptr;
}

// ---- data ------------------------------------------------------------------------------

MemoryData::MemoryData(QVector<QHash<QString, QString>> rows) {
    for (const auto& r : rows)
        addRow(r);
}

void MemoryData::addRow(const QHash<QString, QString>& row) {
    QHash<QString, QString> lowered;
    for (auto it = row.begin(); it != row.end(); ++it)
        lowered.insert(it.key().toLower(), it.value());
    m_rows.append(lowered);
}

QString MemoryData::value(int row, const QString& field) const {
    if (row < 0 || row >= m_rows.size())
        return QString();
    return m_rows[row].value(field.toLower());
}

// ---- paper -----------------------------------------------------------------------------

static PageSetup setupFor(QPageSize::PageSizeId id) {
    PageSetup s;
    s.paper = QPageSize(id).size(QPageSize::Point);
    return s;
}

PageSetup PageSetup::a4() {
    return setupFor(QPageSize::A4);
}
PageSetup PageSetup::letter() {
    return setupFor(QPageSize::Letter);
}

PageSetup PageSetup::systemDefault() {
    const QPrinterInfo printer = QPrinterInfo::defaultPrinter();
    if (!printer.isNull()) {
        const QPageSize size = printer.defaultPageSize();
        if (size.isValid()) {
            PageSetup s;
            s.paper = size.size(QPageSize::Point);
            return s;
        }
    }
    const auto country = QLocale().territory();
    const bool letterCountry = QLocale().measurementSystem() == QLocale::ImperialUSSystem ||
                               country == QLocale::Canada || country == QLocale::Mexico ||
                               country == QLocale::Philippines || country == QLocale::Chile;
    return letterCountry ? letter() : a4();
}

// ---- measuring -------------------------------------------------------------------------

double lineHeight(const FontSpec& font) {
    return QFontMetricsF(reportFont(font), &measureDevice()).lineSpacing() / kMeasureScale;
}

QStringList wrapText(const QString& text, const FontSpec& spec, double width) {
    QStringList lines;
    const QFont font = reportFont(spec);
    QString normalised = text;
    normalised.replace(QStringLiteral("\r\n"), QStringLiteral("\n"))
        .replace(QLatin1Char('\r'), QLatin1Char('\n'));
    for (const QString& paragraph : normalised.split(QLatin1Char('\n'))) {
        if (paragraph.trimmed().isEmpty()) {
            lines << QString();
            continue;
        }
        QTextLayout layout(paragraph, font, &measureDevice());
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        layout.setTextOption(option);
        layout.beginLayout();
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(std::max(1.0, width * kMeasureScale));
            QString part = paragraph.mid(line.textStart(), line.textLength());
            while (!part.isEmpty() && part.back().isSpace())
                part.chop(1);
            lines << part;
        }
        layout.endLayout();
    }
    // Trailing blank lines would only make a box taller.
    while (lines.size() > 1 && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

namespace {

const QChar kCutMark(0x2026); // "…", ending a text that its box could not hold

QString withoutTrailingBlanks(QString text) {
    while (!text.isEmpty() && text.back().isSpace())
        text.chop(1);
    return text;
}

// The longest start of `line` that fits `width` together with the mark of the cut.
QString cutWithMark(const QString& line, const FontSpec& font, double width) {
    const auto marked = [&](int n) { return withoutTrailingBlanks(line.left(n)) + kCutMark; };
    int lo = 0, hi = int(line.size());
    while (lo < hi) {
        const int mid = (lo + hi + 1) / 2;
        if (advance(marked(mid), font) <= width)
            lo = mid;
        else
            hi = mid - 1;
    }
    if (lo > 0 && line[lo - 1].isHighSurrogate())
        --lo;
    return marked(lo);
}

} // namespace

QString clipToWidth(const QString& text, const FontSpec& font, double width) {
    QString normalised = text;
    normalised.replace(QStringLiteral("\r\n"), QStringLiteral("\n"))
        .replace(QLatin1Char('\r'), QLatin1Char('\n'));
    const qsizetype end = normalised.indexOf(QLatin1Char('\n'));
    QString line = end < 0 ? normalised : normalised.left(end);
    const bool moreLines = end >= 0 && !normalised.mid(end).trimmed().isEmpty();
    if (!moreLines && advance(line, font) <= width)
        return line;
    return cutWithMark(line, font, width);
}

// ---- layout ----------------------------------------------------------------------------

namespace {

struct Band {
    QVector<PageItem> items; // rects relative to the band's top-left corner
    double height = 0;
};

double controlLeft(const Control& c, double bodyWidth) {
    return c.anchor == Anchor::Middle ? bodyWidth / 2 + c.left : c.left;
}

double controlWidth(const Control& c, double bodyWidth) {
    return c.width == kToRightMargin ? std::max(0.0, bodyWidth - controlLeft(c, bodyWidth)) : c.width;
}

constexpr double kKeptGap = 3.0;

// A control of a band as it is laid out: where it stands and the lines it shows.
struct Placed {
    const Control* control;
    double left;
    double width;
    Align align;
    QString text;
    QStringList lines;
    double lineHeight = 0;
    double growth = 0;
    double shift = 0;
};

// A control at its design place with its text in lines: a growing box wraps and grows, a
// fixed box of several lines wraps inside itself, any other shows one clipped line.
Placed placeControl(const Control& c, const ReportData* data, int row, double bodyWidth) {
    Placed p{&c, controlLeft(c, bodyWidth), controlWidth(c, bodyWidth), c.align, {}, {}};
    if (c.kind == ControlKind::Line)
        return p;
    p.text = c.kind == ControlKind::Label ? c.caption : data ? data->value(row, c.dataField) : QString();
    p.lineHeight = lineHeight(c.font);
    if (c.canGrow) {
        p.lines = wrapText(p.text, c.font, p.width);
        p.growth = std::max(0.0, p.lines.size() * p.lineHeight - c.height);
    } else if (c.height >= 2 * p.lineHeight) {
        // What the box cannot hold is cut with a mark at the end of its last line.
        p.lines = wrapText(p.text, c.font, p.width);
        const int fit = std::max(1, int(std::floor(c.height / p.lineHeight + 1e-6)));
        if (p.lines.size() > fit) {
            const bool lost = std::any_of(p.lines.begin() + fit, p.lines.end(),
                                          [](const QString& l) { return !l.isEmpty(); });
            p.lines.resize(fit);
            if (lost)
                p.lines.last() = cutWithMark(p.lines.last(), c.font, p.width);
        }
    } else {
        p.lines = QStringList{clipToWidth(p.text, c.font, p.width)};
    }
    return p;
}

// A control centred with a partner: the two stand side by side as one unit, each as wide as
// its text and the gap between them, centred in the span of their two design boxes.
void centrePartners(QVector<Placed>& placed) {
    for (Placed& first : placed) {
        const Control& c = *first.control;
        if (c.centredWith.isEmpty())
            continue;
        const auto partner = std::find_if(placed.begin(), placed.end(), [&](const Placed& q) {
            return q.control->name.compare(c.centredWith, Qt::CaseInsensitive) == 0;
        });
        if (partner == placed.end())
            notFound(c.centredWith);
        Placed& second = *partner;
        const double spanLeft = std::min(first.left, second.left);
        const double span = std::max(first.left + first.width, second.left + second.width) - spanLeft;
        first.lines = {withoutTrailingBlanks(clipToWidth(first.text, c.font, span))};
        const double firstWidth = advance(first.lines[0], c.font);
        const double room = std::max(0.0, span - firstWidth - c.unitGap);
        second.lines = {withoutTrailingBlanks(clipToWidth(second.text, second.control->font, room))};
        const double secondWidth =
            second.lines[0].isEmpty() ? 0.0 : advance(second.lines[0], second.control->font);
        const double unit = firstWidth + (secondWidth > 0 ? c.unitGap + secondWidth : 0.0);
        first.left = spanLeft + std::max(0.0, span - unit) / 2;
        first.width = firstWidth;
        second.left = first.left + firstWidth + c.unitGap;
        second.width = secondWidth;
        first.align = second.align = Align::Left;
    }
}

// A box that grows pushes down whatever stands below it in the same columns.
void pushDownBelowGrowth(const Section& section, QVector<Placed>& placed) {
    const int n = int(placed.size());
    QVector<int> order(n);
    for (int i = 0; i < n; ++i)
        order[i] = i;
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return section.controls[a].top < section.controls[b].top; });
    for (int oi = 0; oi < n; ++oi) {
        Placed& p = placed[order[oi]];
        const Control& c = *p.control;
        for (int oj = 0; oj < oi; ++oj) {
            const Placed& q = placed[order[oj]];
            const Control& d = *q.control;
            const double gap = c.top - (d.top + d.height);
            const bool overlaps =
                q.left < p.left + std::max(p.width, 0.5) && p.left < q.left + std::max(q.width, 0.5);
            // A wide design gap takes up growth, down to a small gap that stays.
            if (gap >= -0.5 && overlaps)
                p.shift = std::max(p.shift, q.shift + q.growth - std::max(0.0, gap - kKeptGap));
        }
    }
}

// The items of one placed control: a line, or one item for each line of text that is not empty.
void addItems(const Section& section, const Placed& p, double top, QVector<PageItem>& items) {
    const Control& c = *p.control;
    if (c.kind == ControlKind::Line) {
        PageItem item;
        item.kind = ControlKind::Line;
        item.control = c.name;
        item.section = section.name;
        item.rect = QRectF(p.left, top, p.width, c.height);
        item.lineWidth = c.lineWidth;
        items.append(item);
        return;
    }
    for (int k = 0; k < p.lines.size(); ++k) {
        if (p.lines[k].isEmpty())
            continue;
        PageItem item;
        item.kind = c.kind;
        item.control = c.name;
        item.section = section.name;
        item.rect = QRectF(p.left, top + k * p.lineHeight, p.width, p.lineHeight);
        item.text = p.lines[k];
        item.font = c.font;
        item.align = p.align;
        items.append(item);
    }
}

Band buildBand(const Section& section, const ReportData* data, int row, double bodyWidth) {
    QVector<Placed> placed;
    placed.reserve(section.controls.size());
    double designBottom = 0;
    for (const Control& c : section.controls) {
        placed.append(placeControl(c, data, row, bodyWidth));
        designBottom = std::max(designBottom, c.top + c.height);
    }
    centrePartners(placed);
    pushDownBelowGrowth(section, placed);

    Band band;
    const double padding = std::max(0.0, section.height - designBottom);
    band.height = section.height;
    for (const Placed& p : placed) {
        const double top = p.control->top + p.shift;
        band.height = std::max(band.height, top + p.control->height + p.growth + padding);
        addItems(section, p, top, band.items);
    }
    return band;
}

double itemBottom(const PageItem& item) {
    return item.rect.bottom() + (item.kind == ControlKind::Line ? item.lineWidth / 2 : 0);
}

class Paginator {
  public:
    Paginator(const ReportDesign& design, const PageSetup& setup) : m_design(design), m_setup(setup) {
        if (const Section* f = design.section(SectionKind::PageFooter))
            m_footer = buildBand(*f, nullptr, -1, setup.bodyWidth());
        m_bodyBottom = setup.paper.height() - setup.marginBottom - m_footer.height;
    }

    void startPage(bool first) {
        if (!m_pages.isEmpty())
            finishPage();
        m_pages.append(Page());
        m_y = m_setup.marginTop;
        if (first)
            if (const Section* s = m_design.section(SectionKind::ReportHeader))
                put(buildBand(*s, nullptr, -1, m_setup.bodyWidth()));
        if (const Section* s = m_design.section(SectionKind::PageHeader))
            put(buildBand(*s, nullptr, -1, m_setup.bodyWidth()));
        m_contentTop = m_y;
    }

    void place(Band band) {
        if (m_y + band.height <= m_bodyBottom + 1e-6) {
            put(band);
            return;
        }
        if (m_y > m_contentTop + 1e-6) {
            startPage(false);
            if (m_y + band.height <= m_bodyBottom + 1e-6) {
                put(band);
                return;
            }
        }
        // Taller than a whole page: split between lines, at least one item per page, so that
        // any text ends however long it is.
        QVector<PageItem> rest = band.items;
        double restHeight = band.height;
        while (true) {
            const double avail = m_bodyBottom - m_y;
            QVector<PageItem> now, later;
            for (const auto& item : rest)
                (itemBottom(item) <= avail + 1e-6 ? now : later).append(item);
            if (now.isEmpty() && !later.isEmpty()) {
                auto first =
                    std::min_element(later.cbegin(), later.cend(), [](const PageItem& a, const PageItem& b) {
                        return a.rect.top() < b.rect.top();
                    });
                now.append(*first);
                later.erase(first);
            }
            double used = 0;
            for (const auto& item : now) {
                used = std::max(used, itemBottom(item));
                putItem(item, m_y);
            }
            if (later.isEmpty()) {
                m_y += std::min(std::max(used, restHeight), std::max(avail, used));
                return;
            }
            double cut = later.first().rect.top();
            for (const auto& item : later)
                cut = std::min(cut, item.rect.top());
            for (auto& item : later)
                item.rect.translate(0, -cut);
            restHeight = std::max(0.0, restHeight - cut);
            rest = later;
            startPage(false);
        }
    }

    QVector<Page> finish() {
        if (m_pages.isEmpty())
            startPage(true);
        finishPage();
        const QString count = QString::number(m_pages.size());
        for (int i = 0; i < m_pages.size(); ++i)
            for (auto& item : m_pages[i].items)
                // Only captions carry page numbers; data prints as it is.
                if (item.kind == ControlKind::Label && item.text.contains(QLatin1Char('%')))
                    item.text.replace(QStringLiteral("%P"), count)
                        .replace(QStringLiteral("%p"), QString::number(i + 1));
        return m_pages;
    }

  private:
    void put(const Band& band) {
        for (const auto& item : band.items)
            putItem(item, m_y);
        m_y += band.height;
    }

    void putItem(PageItem item, double top) {
        item.rect.translate(m_setup.marginLeft, top);
        m_pages.last().items.append(item);
    }

    void finishPage() {
        const double top = m_setup.paper.height() - m_setup.marginBottom - m_footer.height;
        for (const auto& item : m_footer.items)
            putItem(item, top);
    }

    const ReportDesign& m_design;
    const PageSetup& m_setup;
    Band m_footer;
    QVector<Page> m_pages;
    double m_y = 0;
    double m_contentTop = 0;
    double m_bodyBottom = 0;
};

} // namespace

LaidOutReport layoutReport(const ReportDesign& design, const ReportData& data, const PageSetup& setup) {
    Paginator pages(design, setup);
    pages.startPage(true);
    if (const Section* detail = design.section(SectionKind::Detail))
        for (int row = 0; row < data.rowCount(); ++row)
            pages.place(buildBand(*detail, &data, row, setup.bodyWidth()));
    if (const Section* footer = design.section(SectionKind::ReportFooter))
        pages.place(buildBand(*footer, nullptr, -1, setup.bodyWidth()));
    return LaidOutReport{setup, pages.finish()};
}

// ---- page model ------------------------------------------------------------------------

QStringList Page::textOf(const QString& control) const {
    QStringList out;
    for (const auto& item : items)
        if (item.kind != ControlKind::Line && item.control.compare(control, Qt::CaseInsensitive) == 0)
            out << item.text;
    return out;
}

QStringList Page::texts() const {
    QVector<const PageItem*> sorted;
    for (const auto& item : items)
        if (item.kind != ControlKind::Line)
            sorted.append(&item);
    std::stable_sort(sorted.begin(), sorted.end(), [](const PageItem* a, const PageItem* b) {
        if (std::abs(a->rect.top() - b->rect.top()) > 0.5)
            return a->rect.top() < b->rect.top();
        return a->rect.left() < b->rect.left();
    });
    QStringList out;
    for (const auto* item : sorted)
        out << item->text;
    return out;
}

// ---- painting --------------------------------------------------------------------------

void paintPage(QPainter& painter, const Page& page) {
    const QPaintDevice* device = painter.device();
    const double sx = device->logicalDpiX() / 72.0;
    const double sy = device->logicalDpiY() / 72.0;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    for (const auto& item : page.items) {
        if (item.kind == ControlKind::Line) {
            QPen pen(Qt::black);
            pen.setWidthF(std::max(0.5, item.lineWidth * sx));
            pen.setCapStyle(Qt::FlatCap);
            painter.setPen(pen);
            const QRectF& r = item.rect;
            painter.drawLine(QPointF(r.left() * sx, r.top() * sy), QPointF(r.right() * sx, r.bottom() * sy));
            continue;
        }
        painter.setPen(Qt::black);
        painter.setFont(reportFont(item.font));
        const QRectF r(item.rect.left() * sx, item.rect.top() * sy, item.rect.width() * sx,
                       item.rect.height() * sy);
        const int align = item.align == Align::Center  ? Qt::AlignHCenter
                          : item.align == Align::Right ? Qt::AlignRight
                                                       : Qt::AlignLeft;
        // Right-aligned text ends with its last letter at the box's edge, whatever blanks the
        // caption has behind it.
        const QString shown = item.align == Align::Right ? withoutTrailingBlanks(item.text) : item.text;
        painter.drawText(r, align | Qt::AlignTop | Qt::TextSingleLine | Qt::TextDontClip, shown);
    }
    painter.restore();
}

QImage renderPage(const LaidOutReport& report, int pageIndex, double dotsPerInch) {
    const double scale = dotsPerInch / 72.0;
    QImage image(std::max(1, int(std::ceil(report.setup.paper.width() * scale))),
                 std::max(1, int(std::ceil(report.setup.paper.height() * scale))), QImage::Format_RGB32);
    const int dpm = qRound(dotsPerInch / 0.0254);
    image.setDotsPerMeterX(dpm);
    image.setDotsPerMeterY(dpm);
    image.fill(Qt::white);
    if (pageIndex >= 0 && pageIndex < report.pages.size()) {
        QPainter painter(&image);
        paintPage(painter, report.pages[pageIndex]);
    }
    return image;
}

Control label(const QString& name, const QString& caption, double left, double top, double width,
              double height, FontSpec font, Align align) {
    Control c;
    c.name = name;
    c.kind = ControlKind::Label;
    c.caption = caption;
    c.left = left, c.top = top, c.width = width, c.height = height;
    c.font = font;
    c.align = align;
    return c;
}

Control textBox(const QString& name, const QString& field, double left, double top, double width,
                double height, bool grows, FontSpec font, Align align) {
    Control c = label(name, QString(), left, top, width, height, font, align);
    c.kind = ControlKind::TextBox;
    c.dataField = field;
    c.canGrow = grows;
    return c;
}

Control rule(const QString& name, double top, double left, double width, double thickness) {
    Control c;
    c.name = name;
    c.kind = ControlKind::Line;
    c.left = left, c.top = top, c.width = width, c.height = 0;
    c.lineWidth = thickness;
    return c;
}

Section section(const QString& name, SectionKind kind, double height, QVector<Control> controls) {
    Section s;
    s.name = name;
    s.kind = kind;
    s.height = height;
    s.controls = std::move(controls);
    return s;
}

} // namespace reports
