#include <ui/printing.h>

#include <QtTest>

#include <QPrintDialog>
#include <QPrinter>
#include <QStandardItemModel>
#include <QTextCursor>
#include <QTextDocument>

namespace {

QString table(const QString &body)
{
    return QStringLiteral("<table width=\"100%\" border=0 cellspacing=5>\n") + body
        + QStringLiteral("\n</table>");
}

} // namespace

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
        for (int row = 0; row < rows.size(); ++row) {
            for (int column = 0; column < rows.at(row).size(); ++column) {
                if (!rows.at(row).at(column).isEmpty())
                    model->setItem(row, column, new QStandardItem(rows.at(row).at(column)));
            }
        }
        Printing printing;
        QCOMPARE(printing.toHtml(), table(QString()));
        printing.setModel(model);
        QFETCH(QString, body);
        QCOMPARE(printing.toHtml(), table(body));
        // The model may go away before the printing object.
        delete model;
        QCOMPARE(printing.toHtml(), table(QString()));
    }

    void printOnlyWhenAccepted_data()
    {
        QTest::addColumn<bool>("accept");
        QTest::addColumn<int>("rows");
        QTest::newRow("accepted") << true << 1;
        QTest::newRow("accepted, empty model") << true << 0;
        QTest::newRow("cancelled") << false << 1;
    }
    void printOnlyWhenAccepted()
    {
        QFETCH(bool, accept);
        QFETCH(int, rows);
        QTemporaryDir dir;
        const QString pdf = dir.filePath("out.pdf");
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
                dialog->printer()->setOutputFileName(pdf);
                dialog->done(accept ? QDialog::Accepted : QDialog::Rejected);
            }
        });
        poll.start(10);
        printing.print(&owner);
        QVERIFY(ownerWasParent);
        QFile file(pdf);
        QCOMPARE(file.open(QIODevice::ReadOnly), accept);
        if (accept)
            QCOMPARE(file.read(5), QByteArray("%PDF-"));
    }
};

QTEST_MAIN(tst_Printing)
#include "tst_printing.moc"
