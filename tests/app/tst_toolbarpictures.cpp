#include "app/ToolbarNames.h"

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QtTest>

namespace {
QString key(std::string_view name) {
    return QStringLiteral(":/images/") + QString::fromUtf8(name.data(), qsizetype(name.size()));
}

QImage render(QSvgRenderer& renderer) {
    QImage image(renderer.defaultSize(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}
} // namespace

// The pictures the main window and its screens load by key from the resources.
class ToolbarPicturesTest : public QObject {
    Q_OBJECT
  private slots:
    void everyEntryHasBothPictures() {
        for (const ToolbarEntry& entry : toolbarEntries) {
            QSvgRenderer rest(key(entry.restKey));
            QSvgRenderer hover(key(entry.hoverKey));
            QVERIFY2(rest.isValid(), qPrintable(key(entry.restKey)));
            QVERIFY2(hover.isValid(), qPrintable(key(entry.hoverKey)));
            QCOMPARE(rest.defaultSize(), QSize(192, 29));
            QCOMPARE(hover.defaultSize(), QSize(192, 29));
            // Lit must look different from at rest, and both must carry something visible.
            const QImage restImage = render(rest);
            const QImage hoverImage = render(hover);
            QVERIFY2(restImage != hoverImage, qPrintable(key(entry.hoverKey) + " is not lit"));
            QVERIFY(restImage != QImage(restImage.size(), restImage.format()));
        }
    }

    void otherPicturesHaveTheirSizes_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QSize>("size");
        QTest::newRow("pointer") << "Hand" << QSize(32, 32);
        QTest::newRow("main window") << "MDIBackground" << QSize(1600, 1000);
        QTest::newRow("toolbar strip") << "PBBackground" << QSize(192, 1024);
        QTest::newRow("login") << "LoginBackground" << QSize(420, 260);
        QTest::newRow("about") << "AboutBackground" << QSize(450, 225);
        QTest::newRow("icon") << "AppIcon" << QSize(256, 256);
    }

    void otherPicturesHaveTheirSizes() {
        QFETCH(QString, name);
        QFETCH(QSize, size);
        QSvgRenderer renderer(QStringLiteral(":/images/") + name);
        QVERIFY(renderer.isValid());
        QCOMPARE(renderer.defaultSize(), size);
        QCOMPARE(QImage(QStringLiteral(":/images/AppIconPng")).size(), QSize(256, 256));
    }
};

QTEST_MAIN(ToolbarPicturesTest)
#include "tst_toolbarpictures.moc"
