#include <topology/devicegraphicsview.h>
#include <topology/devicescene.h>

#include <QtTest>

#include <QWheelEvent>

class tst_DeviceGraphicsView : public QObject
{
    Q_OBJECT
private slots:
    void controlWheelZooms()
    {
        DeviceScene scene;
        scene.setSceneRect(0, 0, 4000, 4000);
        DeviceGraphicsView view(&scene);
        view.resize(400, 300);
        auto wheel = [&view](int delta, Qt::KeyboardModifiers modifiers) {
            const QPoint at(200, 150);
            QWheelEvent event(at, view.viewport()->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton,
                modifiers, Qt::NoScrollPhase, false);
            QApplication::sendEvent(view.viewport(), &event);
            return view.transform().m22();
        };
        QVERIFY(qFuzzyCompare(wheel(120, Qt::ControlModifier), 1.15));
        QCOMPARE(view.transformationAnchor(), QGraphicsView::AnchorUnderMouse);
        QVERIFY(qFuzzyCompare(wheel(-120, Qt::ControlModifier), 1.0));
        QVERIFY(qFuzzyCompare(wheel(-120, Qt::NoModifier), 1.0));
        // No lower limit.
        for (int i = 0; i < 39; ++i)
            wheel(-120, Qt::ControlModifier);
        QVERIFY(qFuzzyCompare(wheel(-120, Qt::ControlModifier), std::pow(1 / 1.15, 40)));
        QVERIFY(qFuzzyCompare(view.transform().m11(), view.transform().m22()));
    }
};

QTEST_MAIN(tst_DeviceGraphicsView)
#include "tst_devicegraphicsview.moc"
