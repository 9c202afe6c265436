#include <ui/printing.h>

#include <QtTest>

#include <QPrintDialog>
#include <QPrinter>
#include <QStandardItemModel>

class tst_Printing : public QObject
{
    Q_OBJECT
private slots:
    void html_data()
    {
        QTest::addColumn<QList<QStringList>>("rows");
        QTest::addColumn<QString>("body");
        QTest::newRow("no rows") << QList<QStringList>() << "";
        QTest::newRow("two by two") << QList<QStringList> {{"a", "b"}, {"c", "d"}}
                                    << "<tr><td>a</td><td>b</td></tr><tr><td>c</td><td>d</td></tr>";
        QTest::newRow("markup and placeholders as they are")
            << QList<QStringList> {{"a<b>c", "%1 & %2"}} << "<tr><td>a<b>c</td><td>%1 & %2</td></tr>";
        // Cells without an item read as empty text.
        QTest::newRow("missing cells") << QList<QStringList> {{"", ""}, {"only"}}
                                       << "<tr><td></td><td></td></tr><tr><td>only</td><td></td></tr>";
    }
    void html()
    {
        QFETCH(QList<QStringList>, rows);
        auto *model = new QStandardItemModel(rows.size(), 2);
        model->setHorizontalHeaderLabels({"Header one", "Header two"});
        for (int cell = 0; cell < rows.size() * 2; ++cell) {
            const QString text = rows.at(cell / 2).value(cell % 2);
            if (!text.isEmpty())
                model->setItem(cell / 2, cell % 2, new QStandardItem(text));
        }
        // Empty before a model is set and after it goes away.
        Printing printing;
        QStringList pages {printing.toHtml()};
        printing.setModel(model);
        pages << printing.toHtml();
        delete model;
        pages << printing.toHtml();
        const QString table = "<table width=\"100%\" border=0 cellspacing=5>\n%1\n</table>";
        QFETCH(QString, body);
        QCOMPARE(pages, QStringList({table.arg(""), table.arg(body), table.arg("")}));
    }
    void printOnlyWhenAccepted_data()
    {
        QTest::addColumn<bool>("accept");
        QTest::addColumn<int>("rows");
        QTest::newRow("accepted") << true << 1;
        QTest::newRow("cancelled") << false << 1;
    }
    void printOnlyWhenAccepted()
    {
        QFETCH(bool, accept);
        QFETCH(int, rows);
        QTemporaryDir dir;
        QStandardItemModel model(rows, 2);
        Printing printing;
        printing.setModel(&model);
        QWidget owner;
        bool ownerWasParent = false;
        // Points the dialog's printer at a PDF file, so nothing reaches a real
        // printer; done() keeps that choice where accept() would read the form.
        QTimer poll;
        connect(&poll, &QTimer::timeout, [&] {
            if (auto *dialog = qobject_cast<QPrintDialog *>(QApplication::activeModalWidget())) {
                poll.stop();
                ownerWasParent = dialog->parentWidget() == &owner;
                dialog->printer()->setOutputFileName(dir.filePath("out.pdf"));
                dialog->done(accept ? QDialog::Accepted : QDialog::Rejected);
            }
        });
        poll.start(10);
        printing.print(&owner);
        QVERIFY(ownerWasParent);
        QFile file(dir.filePath("out.pdf"));
        QCOMPARE(
            file.open(QIODevice::ReadOnly) ? file.read(5) : QByteArray(), accept ? "%PDF-" : QByteArray());
    }
};

QTEST_MAIN(tst_Printing)
#include "tst_printing.moc"
