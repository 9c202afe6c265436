#include <topology/frontpanel.h>

#include <QtTest>

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QPicture>

namespace {

QImage render(const QString &description)
{
    FrontPanel panel;
    panel.parse(description);
    QImage image(panel.getDimensionRect().size().toSize(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    panel.paint(&painter);
    return image;
}

int inked(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += image.pixel(x, y) != qRgb(255, 255, 255);
    return count;
}

} // namespace

// Repaints composite the elements painted once; through a QPicture the
// painter records every element instead, which is the reference here.

class tst_FrontPanel : public QObject
{
    Q_OBJECT
private slots:
    void parse_data()
    {
        QTest::addColumn<QString>("description");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QRectF>("rect");
        QTest::addColumn<QList<int>>("kinds");
        QTest::addColumn<QString>("toolTip");

        // Every row is parsed after "dimension: 5x3; 1x1(ofm); tooltip: old".
        const QRectF kept(0, 0, 100, 60);
        const QRectF tenByFour(0, 0, 200, 80);
        QTest::newRow("led, tooltip keeps its blank") << "dimension: 10x4; 1x1(led): 255,0,0; tooltip: Unit A"
                                                      << true << tenByFour << QList<int> {3} << " Unit A";
        QTest::newRow("one size piece") << "dimension: 10" << false << kept << QList<int>() << "";
        QTest::newRow("size not a number")
            << "dimension: ax4; 1x1(ofm)" << false << kept << QList<int>() << "";
        QTest::newRow("size keyword case")
            << "Dimension: 10x4; 1x1(ofm)" << false << kept << QList<int>() << "";
        QTest::newRow("negative size") << "dimension: -2x4" << false << kept << QList<int>() << "";
        QTest::newRow("keyword case")
            << "dimension: 10x4; 1x1(LED): 1,2,3" << true << tenByFour << QList<int>() << "";
        QTest::newRow("bad entries skipped one by one")
            << "dimension:  8 x 2 ;; 1x1(led): 0; junk; 1(led): 1; ax1(led): 1; 2x1(nothing); 2x1(); "
               "nanx1(led);"
               " 3x)1(: 1; 2 x 1 ( rj11 ) "
            << true << QRectF(0, 0, 160, 40) << QList<int> {3, 7} << "";
        QTest::newRow("later tooltip wins") << "dimension: 2x2; tooltip: one;tooltip:two" << true
                                            << QRectF(0, 0, 40, 40) << QList<int>() << "two";
        QTest::newRow("tooltip needs its keyword") << "dimension: 2x2; 1x1(text): see tooltip: x" << true
                                                   << QRectF(0, 0, 40, 40) << QList<int>() << "";
    }
    void parse()
    {
        QFETCH(QString, description);
        QFETCH(bool, ok);
        QFETCH(QRectF, rect);
        QFETCH(QList<int>, kinds);
        QFETCH(QString, toolTip);

        FrontPanel panel;
        QVERIFY(panel.parse("dimension: 5x3; 1x1(ofm); tooltip: old"));
        QCOMPARE(panel.parse(description), ok);
        QCOMPARE(panel.getDimensionRect(), rect);
        QCOMPARE(panel.getToolTip(), toolTip);
        QList<int> parsed;
        for (const FrontPanelElement &e : panel.getElements())
            parsed << e.kind;
        QCOMPARE(parsed, kinds);

        // Positions in pixels; parameters keep their own blanks.
        panel.parse("dimension: 5x3; 0.5x1.25(text): a, b ,c ");
        QCOMPARE(QPointF(panel.getElements().at(0).x, panel.getElements().at(0).y), QPointF(10, 25));
        QCOMPARE(panel.getElements().at(0).parameters, (QStringList {"a", " b ", "c"}));
    }
    void paintElement_data()
    {
        QTest::addColumn<QString>("elements"); // after "dimension: 6x3;"
        QTest::addColumn<QPoint>("pixel");
        QTest::addColumn<QColor>("colour");

        const QColor white(Qt::white), gray(Qt::gray), darkGray(Qt::darkGray), bar(0, 230, 117);
        QTest::newRow("led") << "1x1(led): 255,0,0" << QPoint(30, 30) << QColor(Qt::red);
        QTest::newRow("alarm is larger") << "1x1(alarm): 0,0,255" << QPoint(26, 30) << QColor(Qt::blue);
        QTest::newRow("full bar ends at 97") << "0x0(progressbar): 150,5" << QPoint(97, 10) << bar;
        QTest::newRow("half of 3 units ends at 27") << "0x0(progressbar): 50,3" << QPoint(27, 10) << bar;
        QTest::newRow("half of 3 units, past it") << "0x0(progressbar): 50,3" << QPoint(28, 10) << darkGray;
        QTest::newRow("bar needs numbers") << "0x0(progressbar): x,3" << QPoint(10, 10) << white;
        QTest::newRow("strip third cell")
            << "0x0(background): 0,0,255,3" << QPoint(59, 10) << QColor(Qt::blue);
        QTest::newRow("strip drawn first")
            << "0x0(background): 0,0,255,1; 0x0(ofm)" << QPoint(10, 10) << darkGray;
        QTest::newRow("rj45 link") << "0x0(rj45): 1,1" << QPoint(3, 3) << QColor(Qt::green);
        QTest::newRow("rj45 activity") << "0x0(rj45): 1,1" << QPoint(14, 3) << QColor(Qt::red);
        QTest::newRow("rj45 one value") << "0x0(rj45): 1" << QPoint(14, 3) << gray;
        QTest::newRow("rj11 always gray") << "0x0(rj11): 1,1" << QPoint(4, 4) << gray;
        QTest::newRow("sfp stripe") << "0x0(sfp)" << QPoint(10, 8) << QColor(Qt::blue);
        QTest::newRow("db9 two cells") << "0x0(db9)" << QPoint(40, 13) << white;
        QTest::newRow("db25 three cells") << "0x0(db25)" << QPoint(40, 13) << QColor(Qt::lightGray);
        QTest::newRow("ledmat needs three") << "0x0(ledmat): 1,1" << QPoint(17, 2) << white;
        QTest::newRow("ledmat fourth repeats third")
            << "0x0(ledmat): 0,0,1" << QPoint(17, 17) << QColor(Qt::green);
        QTest::newRow("ledmat fourth of its own")
            << "0x0(ledmat): 0,0,0,1" << QPoint(17, 17) << QColor(Qt::green);
    }
    void paintElement()
    {
        QFETCH(QString, elements);
        QFETCH(QPoint, pixel);
        QFETCH(QColor, colour);
        QCOMPARE(QColor(render("dimension: 6x3;" + elements).pixel(pixel)), colour);
    }
    void textAndPictures()
    {
        const QImage cut = render("dimension: 6x1; 0x0(text): Hello,3");
        QVERIFY(inked(cut) > 0);
        QCOMPARE(cut, render("dimension: 6x1; 0x0(text): Hel"));
        QVERIFY(cut != render("dimension: 6x1; 0x0(text): Hello"));

        // Pictures fill 1.5 cells; other kinds draw nothing.
        const QImage serial = render("dimension: 2x2; 0x0(interf): 0");
        QVERIFY(inked(serial) > 0 && inked(serial) == inked(serial.copy(0, 0, 30, 30)));
        QVERIFY(serial != render("dimension: 2x2; 0x0(interf): 1"));
        QCOMPARE(inked(render("dimension: 2x2; 0x0(interf): 2")), 0);
    }
    void referencePanel_data()
    {
        QTest::addColumn<QString>("description");
        QTest::newRow("e1-4port")
            << "dimension: 16x3; 0x0(background): 225,225,225,16; 0x0(text): MX-E1/4 ;"
               "0x1(interf): 0; 1.5x1(db9); 5x1(rj45): 1,1; 6x1(rj45): 0,1; 7x1(rj45): 0,0;"
               "8x1(rj45): 1,0; 10x1(alarm): 255,0,0; 11x1(alarm): 0,200,0;"
               "12.5x0.5(ledmat): 1,0,1,1; 13x2(led): 0,255,0; 14x2(led): 255,200,0;"
               "tooltip: E1 multiplexer, 4 ports";
        QTest::newRow("optical-sfp")
            << "dimension: 14x3; 0x0(background): 200,215,230,14; 0x0(text): OPT-2;"
               "1x1(sfp); 2x1(sfp); 3.5x1(ofm); 4.5x1(ofm); 6x1(text): Rx level;"
               "6x2(progressbar): 72,6; 13x1(alarm): 255,200,0; 12x2(rj11); 1x2(interf): 1";
    }
    void referencePanel()
    {
        QFETCH(QString, description);
        const QImage image = render(description);
        const QString fileName = QString::fromLatin1(QTest::currentDataTag()) + ".png";
        // Written beside the test binary for a person to look at.
        QDir().mkpath("renderings");
        QVERIFY(image.save("renderings/" + fileName));

        const QDir references(TOPOLOGY_REFERENCE_DIR);
        if (qEnvironmentVariableIsSet("MUXCORE_UPDATE_REFERENCES"))
            QVERIFY(image.save(references.filePath(fileName)));
        const QImage reference = QImage(references.filePath(fileName)).convertToFormat(image.format());
        QCOMPARE(reference.size(), image.size());
        // Glyphs may differ between font setups; everything else must match.
        int differing = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                differing += image.pixel(x, y) != reference.pixel(x, y);
        QVERIFY2(differing * 50 < image.width() * image.height(), qPrintable(QString::number(differing)));
    }
    void layerMatchesDirectPainting_data()
    {
        QTest::addColumn<QString>("description");
        QTest::addColumn<QPoint>("offset");

        const QString panel = "dimension: 8x3; 0x0(background): 200,215,230,8; 0x1(interf): 0; 1.5x1(db9);"
                              "4x1(rj45): 1,1; 5x1(sfp); 6x1(ofm); 7x1(alarm): 255,0,0; 7x2(led): 0,255,0;"
                              "6x0(ledmat): 1,0,1; 0x2(progressbar): 72,5";
        QTest::newRow("at the origin") << panel << QPoint(0, 0);
        QTest::newRow("moved") << panel << QPoint(37, 11);
        QTest::newRow("reaching past the panel")
            << "dimension: 2x1; 1x0(background): 0,0,255,3; -1x0(db25)" << QPoint(40, 5);
        QTest::newRow("bar of a negative value")
            << "dimension: 4x1; 2x0(progressbar): -40,2" << QPoint(60, 0);
        QTest::newRow("too wide for a layer")
            << "dimension: 2x1; 0x0(background): 0,0,255,4000; 1x0(led): 1,2,3" << QPoint(3, 0);
    }
    void layerMatchesDirectPainting()
    {
        QFETCH(QString, description);
        QFETCH(QPoint, offset);
        FrontPanel panel;
        panel.parse(description);

        QPicture recorded;
        QPainter recorder(&recorded);
        panel.paint(&recorder);
        recorder.end();

        QImage direct(200, 100, QImage::Format_RGB32);
        direct.fill(Qt::white);
        QPainter painter(&direct);
        painter.translate(offset);
        painter.drawPicture(0, 0, recorded);
        painter.end();

        QImage layered(direct.size(), QImage::Format_RGB32);
        for (int pass = 0; pass < 2; ++pass) { // the second pass reuses the layer
            layered.fill(Qt::white);
            QPainter painter(&layered);
            painter.translate(offset);
            panel.paint(&painter);
            painter.end();
            QCOMPARE(layered, direct);
        }
    }
    void layerFollowsDescriptionAndZoom()
    {
        FrontPanel panel;
        panel.parse("dimension: 2x1; 0x0(led): 255,0,0");
        QImage image(80, 40, QImage::Format_RGB32);
        auto paint = [&](qreal scale) {
            image.fill(Qt::white);
            QPainter painter(&image);
            painter.scale(scale, scale);
            panel.paint(&painter);
        };
        paint(1);
        QCOMPARE(QColor(image.pixel(10, 10)), QColor(Qt::red));
        panel.parse("dimension: 2x1; 0x0(led): 0,0,255");
        paint(1);
        QCOMPARE(QColor(image.pixel(10, 10)), QColor(Qt::blue));
        // Zoomed, the lamp is drawn at its new size, not blown up from a layer.
        paint(2);
        QCOMPARE(QColor(image.pixel(20, 20)), QColor(Qt::blue));
        QCOMPARE(QColor(image.pixel(12, 12)), QColor(Qt::white));
    }
};

QTEST_MAIN(tst_FrontPanel)
#include "tst_frontpanel.moc"
