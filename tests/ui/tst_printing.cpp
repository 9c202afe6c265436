#include <ui/printing.h>

#include <QtTest>

#include <QApplication>
#include <QPrintDialog>
#include <QPrinter>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTimer>

#include <functional>

namespace {

const QString tableStart = QStringLiteral("<table width=\"100%\" border=0 cellspacing=5>\n");
const QString tableEnd = QStringLiteral("\n</table>");

// Answers the next print dialog once it is up: points its printer at a PDF
// file, so that nothing reaches a real printer, then lets answer close it.
void answerPrintDialog(const QString &pdf, std::function<void(QPrintDialog *)> answer)
{
    auto *poll = new QTimer;
    poll->setInterval(10);
    QObject::connect(poll, &QTimer::timeout, [poll, pdf, answer] {
        auto *dialog = qobject_cast<QPrintDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        poll->stop();
        poll->deleteLater();
        dialog->printer()->setOutputFileName(pdf);
        answer(dialog);
    });
    poll->start();
}

} // namespace

class tst_Printing : public QObject
{
    Q_OBJECT
private slots:
    void html_data();
    void html();
    void markupReachesDocument();
    void modelGoneOrMissing();
    void printOnlyWhenAccepted_data();
    void printOnlyWhenAccepted();
};

void tst_Printing::html_data()
{
    QTest::addColumn<QList<QStringList>>("rows");
    QTest::addColumn<QString>("body");

    QTest::newRow("no rows") << QList<QStringList>() << "";
    QTest::newRow("one cell") << QList<QStringList> {{"x"}} << "<tr><td>x</td></tr>";
    QTest::newRow("two by two") << QList<QStringList> {{"a", "b"}, {"c", "d"}}
                                << "<tr><td>a</td><td>b</td></tr><tr><td>c</td><td>d</td></tr>";
    QTest::newRow("markup and placeholders as they are")
        << QList<QStringList> {{"a<b>c", "%1 & %2"}} << "<tr><td>a<b>c</td><td>%1 & %2</td></tr>";
}

void tst_Printing::html()
{
    QFETCH(QList<QStringList>, rows);
    QFETCH(QString, body);

    QStandardItemModel model;
    model.setHorizontalHeaderLabels({"Header one", "Header two"});
    for (const QStringList &texts : rows) {
        QList<QStandardItem *> row;
        for (const QString &text : texts)
            row << new QStandardItem(text);
        model.appendRow(row);
    }
    if (!rows.isEmpty())
        model.setColumnCount(rows.first().size());

    Printing printing;
    printing.setModel(&model);
    QCOMPARE(printing.toHtml(), tableStart + body + tableEnd);
}

void tst_Printing::markupReachesDocument()
{
    QStandardItemModel model(1, 1);
    model.setItem(0, 0, new QStandardItem(QStringLiteral("a<b>c")));
    Printing printing;
    printing.setModel(&model);

    QTextDocument document;
    document.setHtml(printing.toHtml());
    QCOMPARE(document.toPlainText().trimmed(), QStringLiteral("ac"));
    QTextCursor a = document.find(QStringLiteral("a"));
    QTextCursor c = document.find(QStringLiteral("c"));
    QVERIFY(!a.isNull() && !c.isNull());
    QCOMPARE(a.charFormat().fontWeight(), int(QFont::Normal));
    QCOMPARE(c.charFormat().fontWeight(), int(QFont::Bold));
}

void tst_Printing::modelGoneOrMissing()
{
    Printing printing;
    QCOMPARE(printing.toHtml(), tableStart + tableEnd);

    // Cells without an item read as empty text.
    auto *model = new QStandardItemModel(2, 2);
    model->setItem(1, 0, new QStandardItem(QStringLiteral("only")));
    printing.setModel(model);
    QCOMPARE(printing.toHtml(),
        tableStart + "<tr><td></td><td></td></tr><tr><td>only</td><td></td></tr>" + tableEnd);

    delete model;
    QCOMPARE(printing.toHtml(), tableStart + tableEnd);
}

void tst_Printing::printOnlyWhenAccepted_data()
{
    QTest::addColumn<bool>("accept");
    QTest::addColumn<bool>("rows");

    QTest::newRow("accepted") << true << true;
    QTest::newRow("accepted, empty model") << true << false;
    QTest::newRow("cancelled") << false << true;
}

void tst_Printing::printOnlyWhenAccepted()
{
    QFETCH(bool, accept);
    QFETCH(bool, rows);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString pdf = dir.filePath("out.pdf");

    QStandardItemModel model;
    if (rows)
        model.appendRow({new QStandardItem("trap"), new QStandardItem("Unit 1")});
    Printing printing;
    printing.setModel(&model);

    QWidget owner;
    bool ownerWasParent = false;
    // done() keeps the printer as set here; accept() would take the form's
    // choices, which need a real printer.
    answerPrintDialog(pdf, [&](QPrintDialog *dialog) {
        ownerWasParent = dialog->parentWidget() == &owner;
        dialog->done(accept ? QDialog::Accepted : QDialog::Rejected);
    });
    printing.print(&owner);

    QVERIFY(ownerWasParent);
    QCOMPARE(QFile::exists(pdf), accept);
    if (accept) {
        QFile file(pdf);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.read(5) == "%PDF-");
    }
}

QTEST_MAIN(tst_Printing)
#include "tst_printing.moc"
