#include "platform/Error.h"
#include "reports/ReportEngine.h"
#include "support/TestSupport.h"

#include <QImage>
#include <QtTest>

using namespace reports;

namespace {

const FontSpec kBody{10.0};

Control textBox(const QString& name, const QString& field, double left, double top, double width,
                bool grows) {
    return reports::textBox(name, field, left, top, width, 14, grows, kBody);
}

Control label(const QString& name, const QString& caption, double top = 0, double width = 200) {
    return reports::label(name, caption, 0, top, width, 14, kBody);
}

// A list: a heading, a detail of a number and a growing text with a rule below, a footer.
ReportDesign listDesign(double footerHeight = 24) {
    ReportDesign d;
    d.name = QStringLiteral("RptTest");
    d.title = QStringLiteral("Test List");
    d.dataMember = QStringLiteral("cmdTest");
    d.sections = {
        section("ReportHeader", SectionKind::ReportHeader, 20, {label("lblIntro", "Introduction")}),
        section("PageHeader", SectionKind::PageHeader, 20, {label("lblHead", "Heading")}),
        section("cmdTest_Detail", SectionKind::Detail, 44,
                {textBox("txtNo", "No", 0, 2, 60, false), textBox("txtText", "Text", 70, 2, 200, true),
                 textBox("txtBelow", "Below", 70, 16, 200, false), rule("lnRow", 42)}),
        section("PageFooter", SectionKind::PageFooter, footerHeight, {label("lblPage", "%p of %P", 4)}),
        section("ReportFooter", SectionKind::ReportFooter, 0),
    };
    return d;
}

QString words(int count) {
    QStringList w;
    for (int i = 0; i < count; ++i)
        w << QStringLiteral("word%1").arg(i);
    return w.join(QLatin1Char(' '));
}

// The items that a control printed on a page, top to bottom.
QVector<const PageItem*> itemsOf(const Page& page, const QString& control) {
    QVector<const PageItem*> out;
    for (const auto& item : page.items)
        if (item.control == control)
            out << &item;
    return out;
}

double footerTop(const LaidOutReport& r, double footerHeight) {
    return r.setup.paper.height() - r.setup.marginBottom - footerHeight;
}

} // namespace

class TestReportEngine : public QObject {
    Q_OBJECT
  private slots:
    void findsSectionsAndControlsByName() {
        ReportDesign d = listDesign();
        QCOMPARE(d.Sections("pageheader").name, QStringLiteral("PageHeader"));
        QCOMPARE(d.Sections("cmdTest_Detail").Controls("TXTTEXT").dataField, QStringLiteral("Text"));
        QVERIFY_THROWS_EXCEPTION(platform::Error, d.Sections("NoSuchSection"));
        QVERIFY_THROWS_EXCEPTION(platform::Error, d.Sections("PageHeader").Controls("txtText"));

        // A caption set through the names is what the next layout prints.
        d.Sections("PageHeader").Controls("lblHead").setCaption(QStringLiteral("Invoice No /"));
        const auto laid = layoutReport(d, MemoryData(), PageSetup::a4());
        QCOMPARE(laid.pages[0].textOf("lblHead"), QStringList{"Invoice No /"});
    }

    void numbersEveryPageWithTheCount() {
        MemoryData data;
        for (int i = 0; i < 150; ++i)
            data.addRow(
                {{"No", QString::number(i)}, {"Text", i % 7 == 0 ? words(40) : QStringLiteral("short")}});
        data.addRow({{"No", "150"}, {"Text", "Rebate 5%p of %P"}});
        const auto laid = layoutReport(listDesign(), data, PageSetup::a4());
        const int count = int(laid.pages.size());
        QVERIFY(count >= 3);

        QStringList numbers;
        for (int p = 0; p < count; ++p) {
            const Page& page = laid.pages[p];
            QCOMPARE(page.textOf("lblPage"), QStringList{QStringLiteral("%1 of %2").arg(p + 1).arg(count)});
            QCOMPARE(page.textOf("lblHead"), QStringList{"Heading"});
            QCOMPARE(page.textOf("lblIntro").size(), p == 0 ? 1 : 0);
            numbers << page.textOf("txtNo");
            // No row reaches into the footer.
            for (const auto& item : page.items)
                if (item.section == QStringLiteral("cmdTest_Detail"))
                    QVERIFY2(item.rect.bottom() <= footerTop(laid, 24) + 0.01, qPrintable(item.text));
        }
        QStringList expected;
        for (int i = 0; i <= 150; ++i)
            expected << QString::number(i);
        QCOMPARE(numbers, expected);
        // A text that holds the page marks is data, not a page number.
        QCOMPARE(laid.pages.last().textOf("txtText").last(), QStringLiteral("Rebate 5%p of %P"));
    }

    void growingBoxPushesItsBandAndTheControlsBelow() {
        MemoryData data;
        data.addRow({{"No", "1"}, {"Text", words(30)}, {"Below", "under"}});
        data.addRow({{"No", "2"}, {"Text", "one line"}, {"Below", "under"}});
        const auto laid = layoutReport(listDesign(), data, PageSetup::a4());
        const Page& page = laid.pages[0];

        const auto text = itemsOf(page, "txtText");
        const auto below = itemsOf(page, "txtBelow");
        const auto rules = itemsOf(page, "lnRow");
        const auto numbers = itemsOf(page, "txtNo");
        QVERIFY(text.size() >= 4); // 30 words wrap in 200 points
        QCOMPARE(page.textOf("txtText").join(' ').simplified(), words(30) + " one line");
        const double lastLineBottom = text[text.size() - 2]->rect.bottom();
        // The box below and the rule moved down with the growth; the next row starts after them.
        QVERIFY(below[0]->rect.top() >= lastLineBottom - 0.01);
        QVERIFY(rules[0]->rect.top() > below[0]->rect.bottom());
        // The rule's wide gap takes up the growth instead of moving the rule by all of it.
        QVERIFY(rules[0]->rect.top() - below[0]->rect.bottom() < 12 - 0.01);
        QVERIFY(numbers[1]->rect.top() > rules[0]->rect.top());
        // The number beside the box is not pushed: it is not below it.
        QCOMPARE(numbers[0]->rect.top(), text[0]->rect.top());
        // A row that does not grow keeps the design's spacing.
        QCOMPARE(below[1]->rect.top() - numbers[1]->rect.top(), 14.0);
    }

    void bandThatDoesNotFitMovesToTheNextPage() {
        // Find how many plain rows fill the first page, then make the next row tall.
        MemoryData plain;
        for (int i = 0; i < 200; ++i)
            plain.addRow({{"No", QString::number(i)}, {"Text", "x"}});
        const int onFirst =
            int(layoutReport(listDesign(), plain, PageSetup::a4()).pages[0].textOf("txtNo").size());
        QVERIFY(onFirst > 10);

        MemoryData data;
        for (int i = 0; i < onFirst - 1; ++i)
            data.addRow({{"No", QString::number(i)}, {"Text", "x"}});
        data.addRow({{"No", "tall"}, {"Text", words(60)}});
        const auto laid = layoutReport(listDesign(), data, PageSetup::a4());
        QCOMPARE(laid.pages.size(), 2);
        QCOMPARE(laid.pages[0].textOf("txtNo").size(), onFirst - 1);
        QCOMPARE(laid.pages[1].textOf("txtNo"), QStringList{"tall"});
        QCOMPARE(laid.pages[1].textOf("txtText").join(' '), words(60)); // kept together
        QCOMPARE(laid.pages[0].textOf("lblPage"), QStringList{"1 of 2"});
    }

    void oneLineBoxesClip() {
        MemoryData data;
        const QString longNumber = QStringLiteral("FILE-%1").arg(words(10));
        data.addRow({{"No", longNumber}, {"Text", "t"}, {"Below", "first line\nsecond line"}});
        const auto laid = layoutReport(listDesign(), data, PageSetup::a4());
        const QStringList no = laid.pages[0].textOf("txtNo");
        QCOMPARE(no.size(), 1);
        QVERIFY(no[0].size() < longNumber.size());
        // What is cut ends with a mark, and what stands before it is the start of the text.
        QVERIFY(no[0].endsWith(QChar(0x2026)));
        QVERIFY(longNumber.startsWith(no[0].chopped(1)));
        QVERIFY(no[0].size() > 1);
        QVERIFY(clipToWidth(no[0].chopped(1), kBody, 60) == no[0].chopped(1));
        QCOMPARE(laid.pages[0].textOf("txtBelow"), QStringList{QStringLiteral("first line\u2026")});
        // A text that fits, or whose further lines are blank, prints as it is.
        QCOMPARE(clipToWidth(QStringLiteral("F-001"), kBody, 60), QStringLiteral("F-001"));
        QCOMPARE(clipToWidth(QStringLiteral("F-001\r\n  "), kBody, 60), QStringLiteral("F-001"));
    }

    void fixedBoxesOfSeveralLinesMarkTheCut() {
        // A fixed box three lines high: it wraps inside itself and marks what it cannot hold.
        ReportDesign d = listDesign();
        d.Sections("cmdTest_Detail").controls = {
            reports::textBox("txtBox", "Text", 0, 0, 120, 36, false, kBody)};
        const double lines = 36 / lineHeight(kBody);
        QVERIFY(lines >= 3 && lines < 4);
        const auto boxLines = [&](const QString& text) {
            MemoryData data;
            data.addRow({{"Text", text}});
            const auto laid = layoutReport(d, data, PageSetup::a4());
            for (const auto& item : laid.pages[0].items)
                if (item.control == "txtBox")
                    [&] {
                        QVERIFY2(clipToWidth(item.text, kBody, 120) == item.text, qPrintable(item.text));
                    }();
            return laid.pages[0].textOf("txtBox");
        };
        const QStringList cut = boxLines(words(40));
        QCOMPARE(cut.size(), 3);
        QVERIFY(cut.last().endsWith(QChar(0x2026)));
        QVERIFY(words(40).startsWith(cut.join(' ').chopped(1).trimmed()));
        // Text that the box holds keeps all its words, and a text without blanks breaks anywhere.
        QCOMPARE(boxLines(words(6)).join(' '), words(6));
        const QString token = QStringLiteral("https://example.com/d/") + QString(30, QLatin1Char('x'));
        const QStringList broken = boxLines(token);
        QVERIFY(broken.size() > 1);
        QCOMPARE(broken.join(QString()), token);
    }

    void captionAndValueCentredAsOneUnit() {
        // A caption centred with its value across the body, 5 points apart.
        ReportDesign d = listDesign();
        Control caption = reports::label("lblMail", "Email :", 0, 0, 40, 14, kBody);
        caption.centredWith = QStringLiteral("txtMail");
        caption.unitGap = 5;
        d.Sections("cmdTest_Detail").controls = {
            caption,
            reports::textBox("txtMail", "Mail", 45, 0, kToRightMargin, 14, false, kBody, Align::Right)};
        MemoryData data;
        data.addRow({{"Mail", "office@example.no"}});
        data.addRow({{"Mail", words(80)}});
        data.addRow({{"Mail", ""}});
        for (const PageSetup& setup : {PageSetup::a4(), PageSetup::letter()}) {
            const auto laid = layoutReport(d, data, setup);
            const auto captions = itemsOf(laid.pages[0], "lblMail");
            const auto values = itemsOf(laid.pages[0], "txtMail");
            const double middle = setup.marginLeft + setup.bodyWidth() / 2;
            // The unit is as wide as its texts and the gap, centred on the body.
            const PageItem* c = captions[0];
            const PageItem* v = values[0];
            QCOMPARE(v->text, QStringLiteral("office@example.no"));
            QCOMPARE(v->align, Align::Left);
            QVERIFY(std::abs(v->rect.left() - c->rect.right() - 5) < 0.01);
            QVERIFY(std::abs((c->rect.left() + v->rect.right()) / 2 - middle) < 0.01);
            QVERIFY(c->rect.width() < 40 && v->rect.width() < 100);
            QCOMPARE(clipToWidth(v->text, kBody, v->rect.width() + 0.01), v->text);
            // A value wider than the body is cut with a mark, and the unit fills the body.
            QVERIFY(values[1]->text.endsWith(QChar(0x2026)));
            QVERIFY(captions[1]->rect.left() >= setup.marginLeft - 0.01);
            QVERIFY(captions[1]->rect.left() < setup.marginLeft + 5);
            QVERIFY(values[1]->rect.right() <= setup.marginLeft + setup.bodyWidth() + 0.01);
            // Without a value the caption stands alone in the middle.
            QCOMPARE(values.size(), 2);
            QVERIFY(std::abs(captions[2]->rect.center().x() - middle) < 0.01);
        }
        // A partner that the section does not hold is told like any missing control.
        d.Sections("cmdTest_Detail").controls[0].centredWith = QStringLiteral("txtNone");
        QVERIFY_THROWS_EXCEPTION(platform::Error, layoutReport(d, data, PageSetup::a4()));
    }

    void aFaceThatDoesNotShipIsAClearError() {
        // The program ships upright faces only: an italic face is refused by name rather than
        // replaced by another face with other widths.
        QString description;
        QVERIFY(testsupport::errorOf([] { reportFont(FontSpec{10.0, false, true}); }, &description) != 0);
        QCOMPARE(description,
                 QStringLiteral("The report font 'Liberation Sans Italic' could not be loaded."));
        ReportDesign d = listDesign();
        d.Sections("PageHeader").Controls("lblHead").font = FontSpec{10.0, true, true, true};
        QVERIFY(testsupport::errorOf([&] { layoutReport(d, MemoryData(), PageSetup::a4()); }, &description) !=
                0);
        QCOMPARE(description,
                 QStringLiteral("The report font 'Liberation Serif Bold Italic' could not be loaded."));
    }

    void textLongerThanAPageIsSplitAndEnds() {
        MemoryData data;
        const QString huge = words(3000);
        data.addRow({{"No", "1"}, {"Text", huge}});
        data.addRow({{"No", "2"}, {"Text", "after"}});
        const auto laid = layoutReport(listDesign(), data, PageSetup::a4());
        QVERIFY(laid.pages.size() >= 3);
        QStringList all;
        for (const Page& page : laid.pages) {
            all << page.textOf("txtText");
            for (const auto& item : page.items)
                if (item.section == QStringLiteral("cmdTest_Detail"))
                    QVERIFY(item.rect.bottom() <= footerTop(laid, 24) + 0.01);
        }
        QCOMPARE(all.join(' '), huge + " after");
        QCOMPARE(laid.pages.last().textOf("txtNo").last(), QStringLiteral("2"));
    }

    // The page's texts read row by row, each row from the left.
    void emptyDataPrintsHeadingsOnly() {
        ReportDesign d = listDesign();
        d.sections[1].controls.prepend(reports::label("lblRight", "Right", 300, 0, 100, 14, kBody));
        const auto laid = layoutReport(d, MemoryData(), PageSetup::letter());
        QCOMPARE(laid.pages.size(), 1);
        QCOMPARE(laid.pages[0].texts(), (QStringList{"Introduction", "Heading", "Right", "1 of 1"}));
    }

    void headersFillingThePageStillEnd() {
        // A footer taller than the paper leaves no room for rows: each still gets a page.
        MemoryData data;
        for (int i = 0; i < 3; ++i)
            data.addRow({{"No", QString::number(i)}, {"Text", words(50)}});
        const auto laid = layoutReport(listDesign(900), data, PageSetup::a4());
        QVERIFY(!laid.pages.isEmpty());
        QVERIFY(laid.pages.size() < 200);
        QStringList numbers;
        for (const Page& page : laid.pages)
            numbers << page.textOf("txtNo");
        QCOMPARE(numbers, (QStringList{"0", "1", "2"}));
    }

    void paintsTheLaidOutItems() {
        MemoryData data;
        data.addRow({{"No", "1"}, {"Text", "painted"}});
        const auto laid = layoutReport(listDesign(), data, PageSetup::a4());
        const QImage image = renderPage(laid, 0, 72);
        QCOMPARE(image.size(), laid.setup.paper.toSize()); // A4 at one dot per point
        auto inkIn = [&](const QRectF& r) {
            int ink = 0;
            for (int y = int(r.top()); y < int(r.bottom()); ++y)
                for (int x = int(r.left()); x < int(r.right()); ++x)
                    ink += qGray(image.pixel(x, y)) < 128;
            return ink;
        };
        for (const auto& item : laid.pages[0].items)
            if (item.control == "txtText")
                QVERIFY(inkIn(item.rect) > 10);
        // Nothing in the margins.
        QCOMPARE(inkIn(QRectF(0, 0, image.width(), laid.setup.marginTop - 2)), 0);
        QCOMPARE(inkIn(QRectF(0, 0, laid.setup.marginLeft - 2, image.height())), 0);
    }
};

QTEST_MAIN(TestReportEngine)
#include "tst_reportengine.moc"
