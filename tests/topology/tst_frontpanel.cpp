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

int differingPixels(const QImage &image, const QImage &other)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += image.pixel(x, y) != other.pixel(x, y);
    return count;
}

} // namespace

class tst_FrontPanel : public QObject
{
    Q_OBJECT
private slots:
    void parse_data()
    {
        QTest::addColumn<QString>("description");
        QTest::addColumn<QString>("parsed"); // result, size, element kinds, tooltip

        // Every row is parsed after "dimension: 5x3; 1x1(ofm); tooltip: old".
        QTest::newRow("led, tooltip keeps its blank") << "dimension: 10x4; 1x1(led): 255,0,0; tooltip: Unit A"
                                                      << "1 200x80 3 ' Unit A'";
        QTest::newRow("size not a number") << "dimension: ax4; 1x1(ofm)"
                                           << "0 100x60  ''";
        QTest::newRow("keyword case") << "dimension: 10x4; 1x1(LED): 1,2,3"
                                      << "1 200x80  ''";
        QTest::newRow("bad entries skipped one by one")
            << "dimension:  8 x 2 ;; 1x1(led): 0; junk; 1(led): 1; ax1(led): 1; 2x1(nothing); 2x1(); "
               "nanx1(led); 3x)1(: 1; 2 x 1 ( rj11 ) "
            << "1 160x40 3,7 ''";
        QTest::newRow("later tooltip wins") << "dimension: 2x2; tooltip: one;tooltip:two"
                                            << "1 40x40  'two'";
        QTest::newRow("tooltip needs its keyword") << "dimension: 2x2; 1x1(text): see tooltip: x"
                                                   << "1 40x40  ''";
    }
    void parse()
    {
        QFETCH(QString, description);
        FrontPanel panel;
        QVERIFY(panel.parse("dimension: 5x3; 1x1(ofm); tooltip: old"));
        const bool ok = panel.parse(description);
        QStringList kinds;
        for (const FrontPanelElement &e : panel.getElements())
            kinds << QString::number(e.kind);
        const QRectF rect = panel.getDimensionRect();
        QTEST(QString("%1 %2x%3 %4 '%5'")
                  .arg(int(ok))
                  .arg(rect.width())
                  .arg(rect.height())
                  .arg(kinds.join(','), panel.getToolTip()),
            "parsed");
        QCOMPARE(rect.topLeft(), QPointF(0, 0));

        // Positions in pixels; parameters keep their own blanks.
        panel.parse("dimension: 5x3; 0.5x1.25(text): a, b ,c ");
        QCOMPARE(QPointF(panel.getElements().at(0).x, panel.getElements().at(0).y), QPointF(10, 25));
        QCOMPARE(panel.getElements().at(0).parameters, (QStringList {"a", " b ", "c"}));
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
        // No text, so every pixel counts. A bar or matrix short of numbers
        // draws nothing.
        QTest::newRow("elements")
            << "dimension: 12x7; 0x0(background): 0,0,255,3; 1x0(ofm); 4x0(led): 255,0,0; 5x0(alarm): "
               "0,0,255;"
               "7x0(rj45): 1,1; 8x0(rj45): 1; 9x0(rj11): 1,1; 10x0(sfp); 0x2(progressbar): 150,5;"
               "6x2(progressbar): 50,3; 0x3(progressbar): x,3; 0x4(db9); 3x4(db25); 7x4(ledmat): 1,1;"
               "8x4(ledmat): 0,0,1; 10x4(ledmat): 0,0,0,1; 0x5.5(interf): 0; 2x5.5(interf): 1; "
               "4x5.5(interf): 2";
        QTest::newRow("optical-sfp")
            << "dimension: 14x3; 0x0(background): 200,215,230,14; 0x0(text): OPT-2;"
               "1x1(sfp); 2x1(sfp); 3.5x1(ofm); 4.5x1(ofm); 6x1(text): Rx level;"
               "6x2(progressbar): 72,6; 13x1(alarm): 255,200,0; 12x2(rj11); 1x2(interf): 1";
    }
    void referencePanel()
    {
        QFETCH(QString, description);
        const QImage image = render(description);
        const QString fileName
            = QDir(TOPOLOGY_REFERENCE_DIR).filePath(QTest::currentDataTag() + QString(".png"));
        if (qEnvironmentVariableIsSet("MUXCORE_UPDATE_REFERENCES"))
            QVERIFY(image.save(fileName));
        const QImage reference = QImage(fileName).convertToFormat(image.format());
        QCOMPARE(reference.size(), image.size());
        // Glyphs may differ between font setups; everything else must match.
        const int differing = differingPixels(image, reference);
        const int allowed = description.contains("(text)") ? image.width() * image.height() / 50 : 0;
        QVERIFY2(differing <= allowed, qPrintable(QString::number(differing)));
    }
    void layerMatchesDirectPainting_data()
    {
        QTest::addColumn<QString>("description");
        QTest::addColumn<QPoint>("offset");
        QTest::addColumn<qreal>("scale");

        const QString panel = "dimension: 8x3; 0x0(background): 200,215,230,8; 0x1(interf): 0; 1.5x1(db9);"
                              "4x1(rj45): 1,1; 5x1(sfp); 6x1(ofm); 7x1(alarm): 255,0,0; 7x2(led): 0,255,0;"
                              "6x0(ledmat): 1,0,1; 0x2(progressbar): 72,5";
        QTest::newRow("moved") << panel << QPoint(37, 11) << 1.0;
        // Drawn at the new size, not blown up from a layer.
        QTest::newRow("zoomed") << "dimension: 2x1; 0x0(led): 0,0,255" << QPoint(0, 0) << 2.0;
        QTest::newRow("reaching past the panel")
            << "dimension: 2x1; 1x0(background): 0,0,255,3; -1x0(db25)" << QPoint(40, 5) << 1.0;
        QTest::newRow("bar of a negative value")
            << "dimension: 4x1; 2x0(progressbar): -40,2" << QPoint(60, 0) << 1.0;
        QTest::newRow("too wide for a layer")
            << "dimension: 2x1; 0x0(background): 0,0,255,4000; 1x0(led): 1,2,3" << QPoint(3, 0) << 1.0;
    }
    // Repaints composite the elements painted once; through a QPicture the
    // painter records every element instead, which is the reference here.
    void layerMatchesDirectPainting()
    {
        QFETCH(QPoint, offset);
        QFETCH(qreal, scale);
        FrontPanel panel;
        QPicture recorded;
        auto paint = [&](bool layered) {
            QImage image(200, 100, QImage::Format_RGB32);
            image.fill(Qt::white);
            QPainter painter(&image);
            painter.translate(offset);
            painter.scale(scale, scale);
            layered ? panel.paint(&painter) : void(painter.drawPicture(0, 0, recorded));
            return image;
        };
        // The layer of an earlier description must not linger.
        panel.parse("dimension: 2x1; 0x0(led): 255,0,0");
        paint(true);
        QFETCH(QString, description);
        panel.parse(description);
        QPainter recorder(&recorded);
        panel.paint(&recorder);
        recorder.end();
        const QImage direct = paint(false);
        QCOMPARE(paint(true), direct);
        QCOMPARE(paint(true), direct); // from the layer
    }
};

QTEST_MAIN(tst_FrontPanel)
#include "tst_frontpanel.moc"
