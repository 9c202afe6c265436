#include <storage/devicesettingsex.h>
#include <storage/savesettings.h>

#include <QtTest>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <unistd.h>

using DeviceCodes = QMap<short, QString>;

namespace {

// Big-endian fields written by hand, independently of QDataStream.
QByteArray be16(qint16 value)
{
    const quint16 v = quint16(value);
    return QByteArray() + char(v >> 8) + char(v & 0xFF);
}

QByteArray be32(quint32 v)
{
    return QByteArray() + char(v >> 24) + char((v >> 16) & 0xFF) + char((v >> 8) & 0xFF) + char(v & 0xFF);
}

QByteArray bytesField(const QByteArray &bytes)
{
    if (bytes.isNull())
        return be32(0xFFFFFFFF);
    return be32(quint32(bytes.size())) + bytes;
}

QByteArray textField(const QString &text)
{
    if (text.isNull())
        return be32(0xFFFFFFFF);
    QByteArray utf16;
    for (const QChar c : text)
        utf16 += char(c.unicode() >> 8) + QByteArray(1, char(c.unicode() & 0xFF));
    return be32(quint32(utf16.size())) + utf16;
}

QByteArray sha256(const QByteArray &data)
{
    return QCryptographicHash::hash(data, QCryptographicHash::Sha256);
}

QByteArray currentFile(
    qint16 code, const QString &name, qint16 p16, qint32 p32, const QByteArray &hash, const QByteArray &data)
{
    return QByteArray("AAAA") + be16(code) + textField(name) + be16(p16) + be32(quint32(p32))
        + bytesField(hash) + bytesField(data);
}

QByteArray oldFile(qint16 code, const QString &name, qint16 p16, const QByteArray &data)
{
    return be16(code) + textField(name) + be16(p16) + bytesField(data);
}

DeviceSettingsEx sentinel()
{
    DeviceSettingsEx s;
    s.deviceCode = 77;
    s.deviceName = QStringLiteral("untouched");
    s.param16 = 5;
    s.param32 = 1234;
    s.hash = "h";
    s.data = "d";
    return s;
}

} // namespace

class tst_SaveSettings : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void staticTables();
    void saveWritesFixedLayout_data();
    void saveWritesFixedLayout();
    void savedFileReadsBack();
    void saveReplacesWholeFile();
    void saveFailureKeepsEverything_data();
    void saveFailureKeepsEverything();
    void readRefuses_data();
    void readRefuses();
    void readOldGeneration_data();
    void readOldGeneration();
    void currentGenerationMapsNameButKeepsCode();
    void emptyAndIdentifierOnly_data();
    void emptyAndIdentifierOnly();
    void truncatedAtEveryField_data();
    void truncatedAtEveryField();
    void hostileLengths_data();
    void hostileLengths();
    void alteredImageIsCorrupted_data();
    void alteredImageIsCorrupted();

private:
    QString pathFor(const QString &name) const { return dir->filePath(name); }
    void writeFile(const QString &path, const QByteArray &bytes);

    QTemporaryDir *dir = nullptr;
};

void tst_SaveSettings::init()
{
    dir = new QTemporaryDir;
    QVERIFY(dir->isValid());
    SaveSettings::deviceCodes.clear();
}

void tst_SaveSettings::cleanup()
{
    delete dir;
    dir = nullptr;
    SaveSettings::deviceCodes.clear();
}

void tst_SaveSettings::writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

void tst_SaveSettings::staticTables()
{
    QCOMPARE(SaveSettings::exFileFormatIdentifier, QByteArray("\x41\x41\x41\x41"));

    const QMap<QString, QString> expected = {
        {"VT-QX", "Vantor-QX"},
        {"VT-QX10", "Vantor-QX10"},
        {"VT-QX10-V", "Vantor-QX10-V"},
        {"VT-QX20", "Vantor-QX20"},
        {"VT-QX20-V", "Vantor-QX20-V"},
        {"VT-QX30", "Vantor-QX30"},
        {"VT-QX30-V", "Vantor-QX30-V"},
        {"VT-QX40", "Vantor-QX40"},
        {"VT-QX-T10", "Vantor-RT-T10"},
        {"VT-QX-T20", "Vantor-RT-T20"},
    };
    QCOMPARE(SaveSettings::oldVersionNames, expected);
}

void tst_SaveSettings::saveWritesFixedLayout_data()
{
    QTest::addColumn<qint16>("code");
    QTest::addColumn<QString>("name");
    QTest::addColumn<qint16>("p16");
    QTest::addColumn<qint32>("p32");
    QTest::addColumn<QByteArray>("data");

    QTest::newRow("typical") << qint16(12) << "Vantor-QX20" << qint16(3) << qint32(70000)
                             << QByteArray("\x01\x02\x00\xFF", 4);
    QTest::newRow("negative numbers") << qint16(-2) << "M" << qint16(-32768) << qint32(-1) << QByteArray("x");
    QTest::newRow("null name and image") << qint16(0) << QString() << qint16(0) << qint32(0) << QByteArray();
    QTest::newRow("empty name and image")
        << qint16(1) << QString("") << qint16(0) << qint32(0) << QByteArray("");
    QTest::newRow("text beyond latin-1") << qint16(9) << QString::fromUtf8("Узел \xF0\x9F\x93\xA1")
                                         << qint16(1) << qint32(2) << QByteArray(3000, '\x5A');
}

void tst_SaveSettings::saveWritesFixedLayout()
{
    QFETCH(qint16, code);
    QFETCH(QString, name);
    QFETCH(qint16, p16);
    QFETCH(qint32, p32);
    QFETCH(QByteArray, data);

    DeviceSettingsEx settings;
    settings.deviceCode = code;
    settings.deviceName = name;
    settings.param16 = p16;
    settings.param32 = p32;
    settings.hash = "stale";
    settings.data = data;

    const QString path = pathFor("unit.dvsf");
    QVERIFY(SaveSettings::save(settings, path));
    // The caller's record carries the digest that went into the file.
    QCOMPARE(settings.hash, sha256(data));

    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), currentFile(code, name, p16, p32, sha256(data), data));
}

void tst_SaveSettings::savedFileReadsBack()
{
    DeviceSettingsEx saved;
    saved.deviceCode = 300;
    saved.deviceName = QStringLiteral("Vantor-RT-T10");
    saved.param16 = -7;
    saved.param32 = 123456789;
    saved.data = QByteArray(512, '\x33');
    const QString path = pathFor("back.dvsf");
    QVERIFY(SaveSettings::save(saved, path));

    DeviceSettingsEx loaded;
    QVERIFY(SaveSettings::read(loaded, path));
    QCOMPARE(loaded, saved);
    QVERIFY(!loaded.isCorrupted());
}

void tst_SaveSettings::saveReplacesWholeFile()
{
    const QString path = pathFor("replace.dvsf");
    writeFile(path, QByteArray(10000, 'z'));

    DeviceSettingsEx settings;
    settings.deviceName = QStringLiteral("A");
    settings.data = "abc";
    QVERIFY(SaveSettings::save(settings, path));

    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), currentFile(0, "A", 0, 0, sha256("abc"), "abc"));
    // No temporary file is left beside the target.
    QCOMPARE(QDir(dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList {"replace.dvsf"});
}

void tst_SaveSettings::saveFailureKeepsEverything_data()
{
    QTest::addColumn<QString>("target");

    QTest::newRow("folder missing") << "missing/unit.dvsf";
    QTest::newRow("target is a folder") << "folder.dvsf";
    QTest::newRow("below a plain file") << "plain/unit.dvsf";
}

void tst_SaveSettings::saveFailureKeepsEverything()
{
    QFETCH(QString, target);
    QVERIFY(QDir(dir->path()).mkdir("folder.dvsf"));
    writeFile(pathFor("plain"), "keep");

    DeviceSettingsEx settings;
    settings.data = "image";
    QVERIFY(!SaveSettings::save(settings, pathFor(target)));
    QCOMPARE(settings.hash, sha256("image"));

    QVERIFY(QFileInfo(pathFor("folder.dvsf")).isDir());
    QFile plain(pathFor("plain"));
    QVERIFY(plain.open(QIODevice::ReadOnly));
    QCOMPARE(plain.readAll(), QByteArray("keep"));
    QCOMPARE(QDir(dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 2);
}

void tst_SaveSettings::readRefuses_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("missing") << "absent.dvsf";
    QTest::newRow("upper-case suffix") << "unit.DVSF";
    QTest::newRow("other suffix") << "unit.dvsf.bak";
    QTest::newRow("no suffix") << "dvsf";
    QTest::newRow("folder") << "folder.dvsf";
    QTest::newRow("pipe") << "pipe.dvsf";
}

void tst_SaveSettings::readRefuses()
{
    QFETCH(QString, name);
    const QByteArray valid = currentFile(4, "X", 1, 2, sha256("d"), "d");
    writeFile(pathFor("unit.DVSF"), valid);
    writeFile(pathFor("unit.dvsf.bak"), valid);
    writeFile(pathFor("dvsf"), valid);
    QVERIFY(QDir(dir->path()).mkdir("folder.dvsf"));
    // Nobody writes to the pipe: opening it would block the reader for good.
    QCOMPARE(::mkfifo(QFile::encodeName(pathFor("pipe.dvsf")).constData(), 0600), 0);

    DeviceSettingsEx settings = sentinel();
    QVERIFY(!SaveSettings::read(settings, pathFor(name)));
    QCOMPARE(settings, sentinel());
}

void tst_SaveSettings::readOldGeneration_data()
{
    QTest::addColumn<QString>("nameInFile");
    QTest::addColumn<qint16>("codeInFile");
    QTest::addColumn<DeviceCodes>("codes");
    QTest::addColumn<QString>("name");
    QTest::addColumn<qint16>("code");

    const DeviceCodes none;
    QTest::newRow("old name, code registered")
        << "VT-QX-T20" << qint16(1) << DeviceCodes {{40, "Vantor-RT-T20"}} << "Vantor-RT-T20" << qint16(40);
    QTest::newRow("old name, code not registered")
        << "VT-QX10-V" << qint16(8) << DeviceCodes {{40, "Vantor-RT-T20"}} << "Vantor-QX10-V" << qint16(8);
    QTest::newRow("current name registered")
        << "Vantor-QX40" << qint16(0) << DeviceCodes {{17, "Vantor-QX40"}} << "Vantor-QX40" << qint16(17);
    QTest::newRow("lowest of several codes")
        << "VT-QX" << qint16(2)
        << DeviceCodes {{7, "Vantor-QX"}, {-5, "Vantor-QX"}, {3, "Vantor-QX"}, {-9, "Other"}} << "Vantor-QX"
        << qint16(-5);
    QTest::newRow("unknown name") << "Custom" << qint16(-3) << none << "Custom" << qint16(-3);
    QTest::newRow("name differs in case") << "vt-qx" << qint16(5) << none << "vt-qx" << qint16(5);
}

void tst_SaveSettings::readOldGeneration()
{
    QFETCH(QString, nameInFile);
    QFETCH(qint16, codeInFile);
    QFETCH(DeviceCodes, codes);
    QFETCH(QString, name);
    QFETCH(qint16, code);

    SaveSettings::deviceCodes = codes;
    const QByteArray image("\x10\x00\x20", 3);
    const QString path = pathFor("old.dvsf");
    writeFile(path, oldFile(codeInFile, nameInFile, -12, image));

    DeviceSettingsEx settings = sentinel();
    QVERIFY(SaveSettings::read(settings, path));
    QCOMPARE(settings.deviceName, name);
    QCOMPARE(settings.deviceCode, code);
    QCOMPARE(settings.param16, qint16(-12));
    QCOMPARE(settings.data, image);
    QCOMPARE(settings.param32, sentinel().param32);
    QCOMPARE(settings.hash, sha256(image));
    QVERIFY(!settings.isCorrupted());
}

void tst_SaveSettings::currentGenerationMapsNameButKeepsCode()
{
    SaveSettings::deviceCodes = {{40, "Vantor-RT-T20"}};
    const QString path = pathFor("current.dvsf");
    writeFile(path, currentFile(6, "VT-QX-T20", 1, 2, sha256("abc"), "abc"));

    DeviceSettingsEx settings;
    QVERIFY(SaveSettings::read(settings, path));
    QCOMPARE(settings.deviceName, QStringLiteral("Vantor-RT-T20"));
    QCOMPARE(settings.deviceCode, qint16(6));
    QCOMPARE(settings.param32, 2);
    QVERIFY(!settings.isCorrupted());
}

void tst_SaveSettings::emptyAndIdentifierOnly_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("corrupted");

    // An empty file is an old-generation file with nothing in it; an identifier
    // alone lacks the digest.
    QTest::newRow("empty file") << QByteArray() << false;
    QTest::newRow("identifier only") << QByteArray("AAAA") << true;
}

void tst_SaveSettings::emptyAndIdentifierOnly()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, corrupted);

    const QString path = pathFor("bare.dvsf");
    writeFile(path, content);
    DeviceSettingsEx settings = sentinel();
    QVERIFY(SaveSettings::read(settings, path));
    QCOMPARE(settings.deviceCode, qint16(0));
    QVERIFY(settings.deviceName.isEmpty());
    QCOMPARE(settings.param16, qint16(0));
    QVERIFY(settings.data.isEmpty());
    QCOMPARE(settings.isCorrupted(), corrupted);
}

void tst_SaveSettings::truncatedAtEveryField_data()
{
    QTest::addColumn<QByteArray>("whole");

    QTest::newRow("current") << currentFile(3, "QX", 4, 5, sha256("image"), "image");
    // The image is empty: a cut-off file must not pass for an intact one
    // merely because the empty image matches the digest.
    QTest::newRow("current, empty image") << currentFile(3, "QX", 4, 5, sha256(""), "");
    QTest::newRow("old") << oldFile(3, "QX", 4, "image");
    QTest::newRow("old, empty image") << oldFile(3, "QX", 4, "");
}

void tst_SaveSettings::truncatedAtEveryField()
{
    QFETCH(QByteArray, whole);
    const QString path = pathFor("cut.dvsf");

    // Every proper prefix except the empty file, which has its own meaning.
    for (int size = 1; size < whole.size(); ++size) {
        writeFile(path, whole.left(size));
        DeviceSettingsEx settings;
        QVERIFY(SaveSettings::read(settings, path));
        QVERIFY2(settings.isCorrupted(), qPrintable(QString("cut at %1").arg(size)));
    }
    writeFile(path, whole);
    DeviceSettingsEx settings;
    QVERIFY(SaveSettings::read(settings, path));
    QVERIFY(!settings.isCorrupted());
}

void tst_SaveSettings::hostileLengths_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<qint16>("code");

    const QByteArray digest = bytesField(sha256(""));
    QTest::newRow("current, huge name")
        << QByteArray("AAAA") + be16(7) + be32(0x7FFFFFFE) + "ab" << qint16(7);
    QTest::newRow("current, name near null marker")
        << QByteArray("AAAA") + be16(7) + be32(0xFFFFFFFE) + "abcd" << qint16(7);
    QTest::newRow("current, odd name length")
        << QByteArray("AAAA") + be16(7) + be32(3) + "abc" + be16(0) + be32(0) + digest + be32(0) << qint16(7);
    QTest::newRow("current, huge digest") << QByteArray("AAAA") + be16(7) + textField("N") + be16(1) + be32(2)
            + be32(0x40000000) + "xyz" << qint16(7);
    QTest::newRow("current, huge image behind digest of empty image")
        << QByteArray("AAAA") + be16(7) + textField("N") + be16(1) + be32(2) + digest + be32(0x10000000) + "x"
        << qint16(7);
    QTest::newRow("old, huge name") << be16(7) + be32(0x7FFFFFFE) + "abc" << qint16(7);
    QTest::newRow("old, huge image") << be16(7) + textField("N") + be16(0) + be32(0xFFFFFFF0) << qint16(7);
}

void tst_SaveSettings::hostileLengths()
{
    QFETCH(QByteArray, content);
    QFETCH(qint16, code);

    const QString path = pathFor("hostile.dvsf");
    writeFile(path, content);
    DeviceSettingsEx settings;
    QVERIFY(SaveSettings::read(settings, path));
    QCOMPARE(settings.deviceCode, code);
    QVERIFY(settings.data.size() <= content.size());
    QVERIFY(settings.deviceName.size() <= content.size());
    QVERIFY(settings.isCorrupted());
}

void tst_SaveSettings::alteredImageIsCorrupted_data()
{
    QTest::addColumn<int>("offsetFromEnd");

    QTest::newRow("last image byte") << 1;
    QTest::newRow("first image byte") << 64;
    QTest::newRow("last digest byte") << 69;
    QTest::newRow("first digest byte") << 100;
}

void tst_SaveSettings::alteredImageIsCorrupted()
{
    QFETCH(int, offsetFromEnd);

    DeviceSettingsEx settings;
    settings.deviceName = QStringLiteral("N");
    settings.data = QByteArray(64, '\x01');
    const QString path = pathFor("altered.dvsf");
    QVERIFY(SaveSettings::save(settings, path));

    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QByteArray bytes = file.readAll();
    // 64 image bytes, their length, then the 32-byte digest before that.
    bytes[bytes.size() - offsetFromEnd] = char(bytes.at(bytes.size() - offsetFromEnd) ^ 0x80);
    QVERIFY(file.seek(0));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
    file.close();

    DeviceSettingsEx loaded;
    QVERIFY(SaveSettings::read(loaded, path));
    QVERIFY(loaded.isCorrupted());
}

QTEST_GUILESS_MAIN(tst_SaveSettings)
#include "tst_savesettings.moc"
