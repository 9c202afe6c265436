#include <storage/filesystemcheck.h>

#include "filehelpers.h"

#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

namespace {

// Every node of a snapshot as "type path hash children", the path decoded and
// "-" for a field the node lacks; sorted, so listing order does not matter.
QStringList nodes(const QJsonObject &node)
{
    const QJsonArray children = node.value("child").toArray();
    QStringList out {
        QStringLiteral("%1 %2 %3 %4")
            .arg(node.value("type").toInt(-1))
            .arg(QString::fromUtf8(QByteArray::fromBase64(node.value("path").toString().toLatin1())),
                node.value("hash").toString("-"),
                node.contains("child") ? QString::number(children.size()) : "-")};
    for (const QJsonValue &child : children)
        out += nodes(child.toObject());
    out.sort();
    return out;
}
QStringList nodes(FileSystemCheck &check)
{
    return nodes(QJsonDocument::fromJson(check.toString().toUtf8()).object());
}

} // namespace

class tst_FileSystemCheck : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        dir.reset(new QTemporaryDir);
        QVERIFY(dir->isValid());
        QVERIFY(QDir().mkpath(at("sub/deep")));
        QVERIFY(writeFile(at("a.txt"), "abc") && writeFile(at("sub/b.bin"), QByteArray("\x00\x01", 2)));
        QVERIFY(writeFile(at("sub/deep/c.txt"), "deep") && writeFile(at("empty"), ""));
        // Ignored where a test asks for it: only the last suffix counts, and its case.
        QVERIFY(writeFile(at("a.log"), "log") && writeFile(at("sub/b.LOG"), "case-sensitive, so kept"));
        QVERIFY(writeFile(at("sub/c.old.log"), "last suffix counts"));
        QVERIFY(QDir().mkpath(at("cache.tmp/inner")));
    }

    void jsonForm()
    {
        QVERIFY(writeFile(at(QString::fromUtf8("Überprüfung")), "abc"));
        FileSystemCheck check;
        check.addIgnoredFileTypes({"log"});
        check.addIgnoredFileTypes({"tmp"});
        check.setPath(root());
        // MD5 test vectors; digests of the other files from an independent tool.
        QCOMPARE(nodes(check).join('\n').replace(root(), "R"),
            QString::fromUtf8("0 R/a.txt 900150983cd24fb0d6963f7d28e17f72 -\n"
                              "0 R/empty d41d8cd98f00b204e9800998ecf8427e -\n"
                              "0 R/sub/b.LOG 8c3d06c6d27142d87f8174529ec70709 -\n"
                              "0 R/sub/b.bin 441077cc9e57554dd476bdfb8b8b8102 -\n"
                              "0 R/sub/deep/c.txt 6627415e807ee33c7302917216e7da68 -\n"
                              "0 R/Überprüfung 900150983cd24fb0d6963f7d28e17f72 -\n"
                              "1 R - 4\n1 R/sub - 3\n1 R/sub/deep - 1"));
    }

    void changes_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("report");
        QTest::newRow("unchanged") << QString() << QString() << "";
        QTest::newRow("one byte changed")
            << "write" << QString("sub/deep/c.txt") << "BAD HASH:%1/sub/deep/c.txt\n";
        QTest::newRow("first entry removed") << "remove" << QString("a.txt") << "NOT EXIST:%1/a.txt\n";
        QTest::newRow("file removed") << "remove" << QString("sub/b.bin") << "NOT EXIST:%1/sub/b.bin\n";
        QTest::newRow("folder removed, its files not listed")
            << "removeDir" << QString("sub") << "NOT EXIST:%1/sub\n";
        QTest::newRow("file and folder added") << "add" << QString("sub/new.txt") << "";
        QTest::newRow("ignored ones changed, a kept one removed")
            << "ignored" << QString("sub/b.LOG") << "NOT EXIST:%1/sub/b.LOG\n";
        QTest::newRow("file turned into folder") << "toDir" << QString("a.txt") << "BAD HASH:%1/a.txt\n";
        QTest::newRow("two findings in listing order")
            << "twice" << QString() << "BAD HASH:%1/a.txt\nNOT EXIST:%1/sub\n";
    }
    void changes()
    {
        QFETCH(QString, action);
        QFETCH(QString, target);
        // The stored side always comes back from its JSON text.
        FileSystemCheck taken;
        taken.addIgnoredFileTypes({"log", "tmp"});
        taken.setPath(root());
        FileSystemCheck check;
        QVERIFY(check.fromString(taken.toString()));
        const QString path = at(target);
        if (action == "write")
            QVERIFY(writeFile(path, "deeP"));
        else if (action == "remove")
            QVERIFY(QFile::remove(path));
        else if (action == "removeDir")
            QVERIFY(QDir(path).removeRecursively());
        else if (action == "add")
            QVERIFY(writeFile(path, "new") && QDir().mkpath(at("extra/inner")));
        else if (action == "ignored")
            QVERIFY(writeFile(at("a.log"), "changed") && QDir(at("cache.tmp")).removeRecursively()
                && QFile::remove(path));
        else if (action == "toDir")
            QVERIFY(QFile::remove(path) && QDir().mkdir(path));
        else if (action == "twice")
            QVERIFY(QDir(at("sub")).removeRecursively() && writeFile(at("a.txt"), "x"));
        QFETCH(QString, report);
        QCOMPARE(check.compare(root()), report.arg(root()));
    }

    void fromString_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<int>("children");
        QTest::newRow("empty") << "" << false << 0;
        QTest::newRow("not json") << "BAD HASH:x" << false << 0;
        QTest::newRow("cut off") << "{\"type\": 1, \"child\": [" << false << 0;
        QTest::newRow("junk values") << "{\"type\": \"dir\", \"path\": 5, \"hash\": \"zz\", \"child\": [3, "
                                        "null, {\"child\": {\"a\": 1}}]}"
                                     << true << 3;
    }
    void fromString()
    {
        QFETCH(QString, text);
        FileSystemCheck check;
        check.setPath(root());
        QFETCH(bool, accepted);
        QCOMPARE(check.fromString(text), accepted);
        if (!accepted)
            QCOMPARE(check.toString(), FileSystemCheck().toString());
        FSItem parsed;
        check.restoreFromJson(QJsonDocument::fromJson(text.toLatin1()).object(), parsed);
        QTEST(int(parsed.children.size()), "children");
        check.compare(root());
    }

private:
    QString at(const QString &relative) const { return dir->path() + "/tree/" + relative; }
    QString root() const { return dir->path() + "/tree"; }

    QScopedPointer<QTemporaryDir> dir;
};

QTEST_GUILESS_MAIN(tst_FileSystemCheck)
#include "tst_filesystemcheck.moc"
