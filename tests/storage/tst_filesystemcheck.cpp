#include <storage/filesystemcheck.h>

#include "filehelpers.h"

#include <QtTest>

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

namespace {

QJsonObject childNamed(const QJsonObject &node, const QString &path)
{
    for (const QJsonValue &value : node.value("child").toArray()) {
        if (QByteArray::fromBase64(value.toObject().value("path").toString().toLatin1()) == path.toUtf8())
            return value.toObject();
    }
    return QJsonObject();
}

QJsonObject snapshotOf(FileSystemCheck &check)
{
    return QJsonDocument::fromJson(check.toString().toUtf8()).object();
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
    }

    void jsonForm()
    {
        const QString unicodeName = QString::fromUtf8("Überprüfung");
        QVERIFY(writeFile(at(unicodeName), "abc"));
        FileSystemCheck check;
        check.setPath(root());
        const QJsonObject top = snapshotOf(check);
        QCOMPARE(top.value("type").toInt(-1), 1);
        QCOMPARE(top.value("path").toString().toLatin1(), root().toUtf8().toBase64());
        QVERIFY(!top.contains("hash"));
        QCOMPARE(top.value("child").toArray().size(), 4);
        const QJsonObject file = childNamed(top, at(unicodeName));
        QCOMPARE(file.value("type").toInt(-1), 0);
        QVERIFY(!file.contains("child"));
        // MD5 test vectors for "abc" and for nothing at all.
        QCOMPARE(file.value("hash").toString(), QStringLiteral("900150983cd24fb0d6963f7d28e17f72"));
        QCOMPARE(childNamed(top, at("empty")).value("hash").toString(),
            QStringLiteral("d41d8cd98f00b204e9800998ecf8427e"));
        QCOMPARE(childNamed(childNamed(top, at("sub")), at("sub/deep")).value("type").toInt(-1), 1);
    }

    void changes_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("report");
        QTest::newRow("unchanged") << QString() << QString() << "";
        QTest::newRow("one byte changed")
            << "write" << QString("sub/deep/c.txt") << "BAD HASH:%1/sub/deep/c.txt\n";
        QTest::newRow("file emptied") << "empty" << QString("a.txt") << "BAD HASH:%1/a.txt\n";
        QTest::newRow("first entry removed") << "remove" << QString("a.txt") << "NOT EXIST:%1/a.txt\n";
        QTest::newRow("file removed") << "remove" << QString("sub/b.bin") << "NOT EXIST:%1/sub/b.bin\n";
        QTest::newRow("folder removed, its files not listed")
            << "removeDir" << QString("sub") << "NOT EXIST:%1/sub\n";
        QTest::newRow("file added") << "write" << QString("sub/new.txt") << "";
        QTest::newRow("folder added") << "mkdir" << QString("extra") << "";
        QTest::newRow("file turned into folder") << "toDir" << QString("a.txt") << "BAD HASH:%1/a.txt\n";
        QTest::newRow("two findings in listing order")
            << "twice" << QString() << "BAD HASH:%1/a.txt\nNOT EXIST:%1/sub\n";
    }
    void changes()
    {
        QFETCH(QString, action);
        QFETCH(QString, target);
        QFETCH(QString, report);
        // The stored side always comes back from its JSON text.
        FileSystemCheck taken;
        taken.setPath(root());
        FileSystemCheck check;
        QVERIFY(check.fromString(taken.toString()));
        const QString path = at(target);
        if (action == "write")
            QVERIFY(writeFile(path, "deeP"));
        else if (action == "empty")
            QVERIFY(writeFile(path, ""));
        else if (action == "remove")
            QVERIFY(QFile::remove(path));
        else if (action == "removeDir")
            QVERIFY(QDir(path).removeRecursively());
        else if (action == "mkdir")
            QVERIFY(QDir().mkpath(path + "/inner"));
        else if (action == "toDir")
            QVERIFY(QFile::remove(path) && QDir().mkdir(path));
        else if (action == "twice")
            QVERIFY(QDir(at("sub")).removeRecursively() && writeFile(at("a.txt"), "x"));
        QCOMPARE(check.compare(root()), report.arg(root()));
    }

    void ignoredSuffixes()
    {
        QVERIFY(writeFile(at("a.log"), "log") && writeFile(at("sub/b.LOG"), "case-sensitive, so kept"));
        QVERIFY(writeFile(at("sub/c.old.log"), "last suffix counts"));
        QVERIFY(QDir().mkpath(at("cache.tmp/inner")));
        FileSystemCheck check;
        check.addIgnoredFileTypes({"log"});
        check.addIgnoredFileTypes({"tmp"});
        check.setPath(root());
        const QByteArray json = check.toString().toLatin1();
        QVERIFY(!json.contains(at("a.log").toUtf8().toBase64()));
        QVERIFY(!json.contains(at("sub/c.old.log").toUtf8().toBase64()));
        QVERIFY(!json.contains(at("cache.tmp").toUtf8().toBase64()));
        QVERIFY(json.contains(at("sub/b.LOG").toUtf8().toBase64()));
        QVERIFY(writeFile(at("a.log"), "changed") && QDir(at("cache.tmp")).removeRecursively());
        QVERIFY(QFile::remove(at("sub/b.LOG")));
        QCOMPARE(check.compare(root()), QStringLiteral("NOT EXIST:%1\n").arg(at("sub/b.LOG")));
    }

    void largeFileReadInPieces()
    {
        // Larger than any sensible read chunk and not a multiple of one; only
        // the last byte changes.
        QByteArray content(3 * 1024 * 1024 + 17, Qt::Uninitialized);
        for (int i = 0; i < content.size(); ++i)
            content[i] = char((i * 7 + i / 4096) & 0xFF);
        QVERIFY(writeFile(at("big"), content));
        FileSystemCheck check;
        check.setPath(root());
        QCOMPARE(childNamed(snapshotOf(check), at("big")).value("hash").toString().toLatin1(),
            QCryptographicHash::hash(content, QCryptographicHash::Md5).toHex());
        content[content.size() - 1] = char(content.at(content.size() - 1) ^ 1);
        QVERIFY(writeFile(at("big"), content));
        QCOMPARE(check.compare(root()), QStringLiteral("BAD HASH:%1\n").arg(at("big")));
    }

    void fromString_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<int>("children");
        QTest::newRow("empty") << "" << false << 0;
        QTest::newRow("not json") << "BAD HASH:x" << false << 0;
        QTest::newRow("array") << "[1, 2]" << false << 0;
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
