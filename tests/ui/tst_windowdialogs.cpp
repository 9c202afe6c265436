#include <ui/datetimedialog.h>
#include <ui/loadsettingsdialog.h>
#include <ui/resetsettingsdialog.h>
#include <ui/statautorefreshdialog.h>

#include "modalanswer.h"

#include <QtTest>

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>

// The four small dialogs of the configuration window, each on its own.
class tst_WindowDialogs : public QObject
{
    Q_OBJECT
private slots:
    void forms_data();
    void forms();
    void loadSettingsPicksFile_data();
    void loadSettingsPicksFile();
};

static QDialog *create(const QString &name)
{
    if (name == QLatin1String("DatetimeDialog"))
        return new DatetimeDialog;
    if (name == QLatin1String("LoadSettingsDialog"))
        return new LoadSettingsDialog;
    if (name == QLatin1String("ResetSettingsDialog"))
        return new ResetSettingsDialog;
    return new StatAutoRefreshDialog;
}

void tst_WindowDialogs::forms_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QStringList>("texts"); // label and check box texts
    QTest::addColumn<bool>("closeOnly");

    QTest::newRow("date time") << QString("DatetimeDialog") << "Set datetime" << QStringList() << true;
    QTest::newRow("load settings") << QString("LoadSettingsDialog") << "Select file."
                                   << QStringList {"Settings location:", "Do not load addresses"} << false;
    QTest::newRow("factory reset") << QString("ResetSettingsDialog") << "Factory Reset"
                                   << QStringList {"The current connection address will not be reset! Do you "
                                                   "realy want to reset all settings to factory default?",
                                          "Do not reset all network addresses"}
                                   << false;
    QTest::newRow("auto refresh") << QString("StatAutoRefreshDialog") << "Auto refresh statistics"
                                  << QStringList {"Period (sec)"} << true;
}

void tst_WindowDialogs::forms()
{
    QFETCH(QString, name);
    QFETCH(QString, title);
    QFETCH(QStringList, texts);
    QFETCH(bool, closeOnly);
    QScopedPointer<QDialog> dialog(create(name));
    QCOMPARE(dialog->objectName(), name);
    QCOMPARE(dialog->windowTitle(), title);

    QStringList seen;
    for (const QLabel *label : dialog->findChildren<QLabel *>())
        seen << label->text();
    for (const QCheckBox *box : dialog->findChildren<QCheckBox *>())
        seen << box->text();
    QCOMPARE(seen, texts);

    auto *buttons = dialog->findChild<QDialogButtonBox *>(QStringLiteral("buttonBox"));
    QVERIFY(buttons);
    QCOMPARE(buttons->standardButtons(), QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    // The box is wired: OK accepts and Cancel rejects.
    QSignalSpy accepted(dialog.data(), &QDialog::accepted), rejected(dialog.data(), &QDialog::rejected);
    buttons->button(QDialogButtonBox::Ok)->click();
    buttons->button(QDialogButtonBox::Cancel)->click();
    QCOMPARE(accepted.count(), 1);
    QCOMPARE(rejected.count(), 1);

    const Qt::WindowFlags flags = dialog->windowFlags();
    QVERIFY(flags & Qt::WindowCloseButtonHint);
    if (closeOnly)
        QVERIFY(!(flags & (Qt::WindowContextHelpButtonHint | Qt::WindowMinMaxButtonsHint)));
}

void tst_WindowDialogs::loadSettingsPicksFile_data()
{
    QTest::addColumn<QString>("extension");
    QTest::addColumn<bool>("pick");

    QTest::newRow("picked") << "dvsf" << true;
    QTest::newRow("cancelled") << "dvsf" << false;
    QTest::newRow("other extension") << "cfg" << true;
}

void tst_WindowDialogs::loadSettingsPicksFile()
{
    QFETCH(QString, extension);
    QFETCH(bool, pick);
    QTemporaryDir dir;
    QFile file(dir.filePath("unit." + extension));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();

    LoadSettingsDialog dialog;
    dialog.setFileExtension(extension);
    dialog.setPath(dir.path());
    QString caption, folder;
    QStringList filters;
    ModalAnswer answer(as<QFileDialog>([&](QFileDialog *files) {
        caption = files->windowTitle();
        folder = files->directory().absolutePath();
        filters = files->nameFilters();
        if (!pick) {
            files->reject();
            return;
        }
        chooseFile(files, file.fileName());
    }));
    dialog.findChild<QToolButton *>(QStringLiteral("tbtLoad"))->click();
    QCOMPARE(answer.answered, 1);
    QCOMPARE(caption, QStringLiteral("Select file."));
    QCOMPARE(folder, QDir(dir.path()).absolutePath());
    QCOMPARE(filters, QStringList(QStringLiteral("Device settings file(*.%1)").arg(extension)));
    QCOMPARE(dialog.getPath(), pick ? file.fileName() : dir.path());
    QCOMPARE(dialog.findChild<QLineEdit *>(QStringLiteral("lePath"))->text(), dialog.getPath());
}

QTEST_MAIN(tst_WindowDialogs)
#include "tst_windowdialogs.moc"
