#include <topology/devicegraphicsview.h>
#include <topology/devicescene.h>

#include <QtTest>

#include <QScrollBar>
#include <QWheelEvent>

class tst_DeviceGraphicsView : public QObject
{
    Q_OBJECT
private slots:
    void wheel_data();
    void wheel();
};

void tst_DeviceGraphicsView::wheel_data()
{
    QTest::addColumn<QList<int>>("notches");
    QTest::addColumn<bool>("control");
    QTest::addColumn<qreal>("scale");

    QTest::newRow("forward zooms in") << QList<int> {120} << true << 1.15;
    QTest::newRow("back zooms out") << QList<int> {-120} << true << 1 / 1.15;
    QTest::newRow("forward then back") << QList<int> {120, -120} << true << 1.0;
    QTest::newRow("no lower limit") << QVector<int>(40, -120).toList() << true << std::pow(1 / 1.15, 40);
    QTest::newRow("without control it scrolls") << QList<int> {-120, -120} << false << 1.0;
}

void tst_DeviceGraphicsView::wheel()
{
    QFETCH(QList<int>, notches);
    QFETCH(bool, control);
    QFETCH(qreal, scale);

    DeviceScene scene;
    scene.setSceneRect(0, 0, 4000, 4000);
    DeviceGraphicsView view(&scene);
    view.resize(400, 300);
    const QPoint at(200, 150);
    const Qt::KeyboardModifiers modifiers = control ? Qt::ControlModifier : Qt::NoModifier;
    for (int delta : qAsConst(notches)) {
        QWheelEvent event(at, view.viewport()->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton,
            modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view.viewport(), &event);
        if (control)
            QVERIFY(event.isAccepted());
    }
    QVERIFY(qFuzzyCompare(view.transform().m11(), scale));
    QVERIFY(qFuzzyCompare(view.transform().m22(), scale));
    if (control)
        QCOMPARE(view.transformationAnchor(), QGraphicsView::AnchorUnderMouse);
    else
        QVERIFY(view.verticalScrollBar()->value() > 0);
}

QTEST_MAIN(tst_DeviceGraphicsView)
#include "tst_devicegraphicsview.moc"
