#include <topology/frontpanel.h>

#include <QtTest>

#include <QDir>
#include <QImage>
#include <QPainter>

class tst_FrontPanel : public QObject
{
    Q_OBJECT
private slots:
    void parse_data();
    void parse();
    void paintElement_data();
    void paintElement();
    void textIsCut();
    void ledColumnRepeatsThirdState();
    void interfacePicture_data();
    void interfacePicture();
    void referencePanel_data();
    void referencePanel();
};

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

int inkedPixels(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += image.pixel(x, y) != qRgb(255, 255, 255);
    return count;
}

} // namespace

void tst_FrontPanel::parse_data()
{
    QTest::addColumn<QString>("previous");
    QTest::addColumn<QString>("description");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<QList<int>>("kinds");
    QTest::addColumn<QPointF>("firstPos");
    QTest::addColumn<QStringList>("firstParams");
    QTest::addColumn<QString>("toolTip");

    const QString before = "dimension: 5x3; 1x1(ofm); tooltip: old";
    const QRectF beforeRect(0, 0, 100, 60);
    const QRectF tenByFour(0, 0, 200, 80);

    QTest::newRow("led with tooltip keeps the blank")
        << before << "dimension: 10x4; 1x1(led): 255,0,0; tooltip: Unit A" << true << tenByFour
        << QList<int> {3} << QPointF(20, 20) << QStringList {"255", "0", "0"} << " Unit A";
    QTest::newRow("size only") << before << "dimension: 3x2" << true << QRectF(0, 0, 60, 40) << QList<int>()
                               << QPointF() << QStringList() << "";
    QTest::newRow("one size piece") << before << "dimension: 10" << false << beforeRect << QList<int>()
                                    << QPointF() << QStringList() << "";
    QTest::newRow("size not a number") << before << "dimension: ax4; 1x1(ofm)" << false << beforeRect
                                       << QList<int>() << QPointF() << QStringList() << "";
    QTest::newRow("size keyword is case-sensitive")
        << before << "Dimension: 10x4; 1x1(ofm)" << false << beforeRect << QList<int>() << QPointF()
        << QStringList() << "";
    QTest::newRow("negative size") << before << "dimension: -2x4" << false << beforeRect << QList<int>()
                                   << QPointF() << QStringList() << "";
    QTest::newRow("empty description")
        << before << "" << false << beforeRect << QList<int>() << QPointF() << QStringList() << "";
    QTest::newRow("keyword is case-sensitive")
        << before << "dimension: 10x4; 1x1(LED): 1,2,3" << true << tenByFour << QList<int>() << QPointF()
        << QStringList() << "";
    QTest::newRow("fractional position")
        << before << "dimension: 10x4; 0.5x1.25(alarm): 0,0,0" << true << tenByFour << QList<int> {2}
        << QPointF(10, 25) << QStringList {"0", "0", "0"} << "";
    QTest::newRow("blanks around every part")
        << before << "dimension:  8 x 2 ; 2 x 1 ( text ) :  a, b ,c  " << true << QRectF(0, 0, 160, 40)
        << QList<int> {0} << QPointF(40, 20) << QStringList {"a", " b ", "c"} << "";
    QTest::newRow("bad entries skipped one by one")
        << before
        << "dimension: 10x4;; 1x1(led): 0,0,0; junk; 1(led): 1; ax1(led): 1; 2x1(nothing): 1; 2x1(): 1;"
           " nanx1(led): 1; 3x)1(: 1; 3x1(rj11)"
        << true << tenByFour << QList<int> {3, 7} << QPointF(20, 20) << QStringList {"0", "0", "0"} << "";
    QTest::newRow("element without parameters")
        << before << "dimension: 2x2; 1x0(ofm)" << true << QRectF(0, 0, 40, 40) << QList<int> {9}
        << QPointF(20, 0) << QStringList {""} << "";
    QTest::newRow("later tooltip replaces earlier")
        << before << "dimension: 2x2; tooltip: one;tooltip:two" << true << QRectF(0, 0, 40, 40)
        << QList<int>() << QPointF() << QStringList() << "two";
    QTest::newRow("tooltip needs its keyword first")
        << before << "dimension: 2x2; 1x1(text): see tooltip: here" << true << QRectF(0, 0, 40, 40)
        << QList<int>() << QPointF() << QStringList() << "";
}

void tst_FrontPanel::parse()
{
    QFETCH(QString, previous);
    QFETCH(QString, description);
    QFETCH(bool, ok);
    QFETCH(QRectF, rect);
    QFETCH(QList<int>, kinds);
    QFETCH(QPointF, firstPos);
    QFETCH(QStringList, firstParams);
    QFETCH(QString, toolTip);

    FrontPanel panel;
    QVERIFY(panel.parse(previous));
    QCOMPARE(panel.parse(description), ok);
    QCOMPARE(panel.getDimensionRect(), rect);
    QCOMPARE(panel.getToolTip(), toolTip);
    const QList<FrontPanelElement> elements = panel.getElements();
    QList<int> parsedKinds;
    for (const FrontPanelElement &e : elements)
        parsedKinds << e.kind;
    QCOMPARE(parsedKinds, kinds);
    if (!elements.isEmpty()) {
        QCOMPARE(QPointF(elements.first().x, elements.first().y), firstPos);
        QCOMPARE(elements.first().parameters, firstParams);
    }
}

void tst_FrontPanel::paintElement_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<QPoint>("pixel");
    QTest::addColumn<QColor>("colour");

    const QColor white(Qt::white);
    const QColor bar(0, 230, 117);
    QTest::newRow("led inside") << "dimension: 3x3; 1x1(led): 255,0,0" << QPoint(30, 30) << QColor(Qt::red);
    QTest::newRow("led is the small lamp") << "dimension: 3x3; 1x1(led): 255,0,0" << QPoint(25, 30) << white;
    QTest::newRow("alarm inside") << "dimension: 3x3; 1x1(alarm): 0,0,255" << QPoint(26, 30)
                                  << QColor(Qt::blue);
    QTest::newRow("alarm edge") << "dimension: 3x3; 1x1(alarm): 0,0,255" << QPoint(23, 30) << white;
    QTest::newRow("alarm needs three values") << "dimension: 3x3; 1x1(alarm): 0,0" << QPoint(30, 30) << white;
    QTest::newRow("full bar ends at 97")
        << "dimension: 10x1; 0x0(progressbar): 150,5" << QPoint(97, 10) << bar;
    QTest::newRow("full bar frame") << "dimension: 10x1; 0x0(progressbar): 150,5" << QPoint(98, 10)
                                    << QColor(Qt::darkGray);
    QTest::newRow("half of a short bar")
        << "dimension: 10x1; 0x0(progressbar): 50,3" << QPoint(27, 10) << bar;
    QTest::newRow("half of a short bar, past it")
        << "dimension: 10x1; 0x0(progressbar): 50,3" << QPoint(28, 10) << QColor(Qt::darkGray);
    QTest::newRow("bar needs numbers") << "dimension: 10x1; 0x0(progressbar): x,3" << QPoint(10, 10) << white;
    QTest::newRow("strip third cell")
        << "dimension: 4x1; 0x0(background): 0,0,255,3" << QPoint(59, 10) << QColor(Qt::blue);
    QTest::newRow("strip ends") << "dimension: 4x1; 0x0(background): 0,0,255,3" << QPoint(70, 10) << white;
    QTest::newRow("strip of no cells")
        << "dimension: 4x1; 0x0(background): 0,0,255,0" << QPoint(10, 10) << white;
    QTest::newRow("rj45 link led") << "dimension: 1x1; 0x0(rj45): 1,1" << QPoint(3, 3) << QColor(Qt::green);
    QTest::newRow("rj45 activity led")
        << "dimension: 1x1; 0x0(rj45): 1,1" << QPoint(14, 3) << QColor(Qt::red);
    QTest::newRow("rj45 body") << "dimension: 1x1; 0x0(rj45): 1,1" << QPoint(10, 12) << QColor(Qt::black);
    QTest::newRow("rj45 one value: gray")
        << "dimension: 1x1; 0x0(rj45): 1" << QPoint(14, 3) << QColor(Qt::gray);
    QTest::newRow("rj45 three values: gray")
        << "dimension: 1x1; 0x0(rj45): 1,1,1" << QPoint(3, 3) << QColor(Qt::gray);
    QTest::newRow("rj11 ignores values")
        << "dimension: 1x1; 0x0(rj11): 1,1" << QPoint(4, 4) << QColor(Qt::gray);
    QTest::newRow("rj11 inset") << "dimension: 1x1; 0x0(rj11)" << QPoint(2, 10) << white;
    QTest::newRow("sfp top stripe") << "dimension: 1x1; 0x0(sfp)" << QPoint(10, 8) << QColor(Qt::blue);
    QTest::newRow("sfp cage") << "dimension: 1x1; 0x0(sfp)" << QPoint(10, 15) << QColor(Qt::darkGray);
    QTest::newRow("ofm") << "dimension: 1x1; 0x0(ofm)" << QPoint(10, 10) << QColor(Qt::darkGray);
    QTest::newRow("db9 shell") << "dimension: 3x1; 0x0(db9)" << QPoint(10, 13) << QColor(Qt::lightGray);
    QTest::newRow("db9 is two cells") << "dimension: 3x1; 0x0(db9)" << QPoint(40, 13) << white;
    QTest::newRow("db25 is three cells")
        << "dimension: 3x1; 0x0(db25)" << QPoint(40, 13) << QColor(Qt::lightGray);
    QTest::newRow("ledmat on") << "dimension: 1x1; 0x0(ledmat): 1,0,0" << QPoint(17, 2) << QColor(Qt::green);
    QTest::newRow("ledmat needs three") << "dimension: 1x1; 0x0(ledmat): 1,1" << QPoint(17, 2) << white;
    QTest::newRow("later element on top")
        << "dimension: 1x1; 0x0(background): 0,0,255,1; 0x0(ofm)" << QPoint(10, 10) << QColor(Qt::darkGray);
}

void tst_FrontPanel::paintElement()
{
    QFETCH(QString, description);
    QFETCH(QPoint, pixel);
    QFETCH(QColor, colour);
    QCOMPARE(QColor(render(description).pixel(pixel)), colour);
}

void tst_FrontPanel::textIsCut()
{
    const QImage cut = render("dimension: 6x1; 0x0(text): Hello,3");
    QVERIFY(inkedPixels(cut) > 0);
    QCOMPARE(cut, render("dimension: 6x1; 0x0(text): Hel"));
    QVERIFY(cut != render("dimension: 6x1; 0x0(text): Hello"));
    // A length that is no number shows everything.
    QCOMPARE(render("dimension: 6x1; 0x0(text): Hello,x"), render("dimension: 6x1; 0x0(text): Hello"));
}

void tst_FrontPanel::ledColumnRepeatsThirdState()
{
    const QColor green(Qt::green);
    // LED 3 sits at y = 3 * 5 + 1.
    QCOMPARE(QColor(render("dimension: 1x1; 0x0(ledmat): 0,0,1").pixel(17, 17)), green);
    QVERIFY(QColor(render("dimension: 1x1; 0x0(ledmat): 0,0,1,0").pixel(17, 17)) != green);
    QVERIFY(QColor(render("dimension: 1x1; 0x0(ledmat): 0,0,0").pixel(17, 17)) != green);
    QCOMPARE(QColor(render("dimension: 1x1; 0x0(ledmat): 0,0,0,1").pixel(17, 17)), green);
}

void tst_FrontPanel::interfacePicture_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<bool>("drawn");
    QTest::newRow("serial") << "0" << true;
    QTest::newRow("ethernet") << "1" << true;
    QTest::newRow("other kind") << "2" << false;
    QTest::newRow("not a number") << "eth" << false;
}

void tst_FrontPanel::interfacePicture()
{
    QFETCH(QString, type);
    QFETCH(bool, drawn);
    const QImage image = render("dimension: 3x3; 0x0(interf): " + type);
    // Scaled into 1.5 cells: nothing beyond 30 pixels.
    QCOMPARE(inkedPixels(image.copy(0, 0, 30, 30)) > 0, drawn);
    QCOMPARE(inkedPixels(image.copy(31, 0, 29, 60)) + inkedPixels(image.copy(0, 31, 60, 29)), 0);
    if (type == "0")
        QVERIFY(image != render("dimension: 3x3; 0x0(interf): 1"));
}

void tst_FrontPanel::referencePanel_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("description");
    QTest::newRow("E1 unit") << "e1-4port"
                             << "dimension: 16x3; 0x0(background): 225,225,225,16; 0x0(text): MX-E1/4 ;"
                                "0x1(interf): 0; 1.5x1(db9); 5x1(rj45): 1,1; 6x1(rj45): 0,1; 7x1(rj45): 0,0;"
                                "8x1(rj45): 1,0; 10x1(alarm): 255,0,0; 11x1(alarm): 0,200,0;"
                                "12.5x0.5(ledmat): 1,0,1,1; 13x2(led): 0,255,0; 14x2(led): 255,200,0;"
                                "tooltip: E1 multiplexer, 4 ports";
    QTest::newRow("optical unit")
        << "optical-sfp"
        << "dimension: 14x3; 0x0(background): 200,215,230,14; 0x0(text): OPT-2;"
           "1x1(sfp); 2x1(sfp); 3.5x1(ofm); 4.5x1(ofm); 6x1(text): Rx level;"
           "6x2(progressbar): 72,6; 13x1(alarm): 255,200,0; 12x2(rj11); 1x2(interf): 1";
}

void tst_FrontPanel::referencePanel()
{
    QFETCH(QString, name);
    QFETCH(QString, description);
    const QImage image = render(description);

    // Written beside the test binary for a person to look at.
    const QString fileName = name + ".png";
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
    QVERIFY2(differing * 100 < image.width() * image.height() * 2, qPrintable(QString::number(differing)));
}

QTEST_MAIN(tst_FrontPanel)
#include "tst_frontpanel.moc"
