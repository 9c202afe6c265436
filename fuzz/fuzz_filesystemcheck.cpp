// Stored integrity snapshots of any content: restored, written back, and
// compared against a small real tree.

#include "fuzzinput.h"

#include <storage/filesystemcheck.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

namespace {

QTemporaryDir *tree = nullptr;

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication *app = new QCoreApplication(*argc, *argv);
    Q_UNUSED(app)
    static QTemporaryDir dir;
    tree = &dir;
    QDir(dir.path()).mkpath(QStringLiteral("etc/sub"));
    writeFile(dir.filePath(QStringLiteral("etc/a.conf")), "alpha");
    writeFile(dir.filePath(QStringLiteral("etc/sub/b.bin")), QByteArray(100, '\x7f'));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray raw(reinterpret_cast<const char *>(data), int(size));
    const QString text = QString::fromLatin1(raw.constData(), raw.size());

    FileSystemCheck check;
    check.fromString(text);
    const QString written = check.toString();

    // What the snapshot wrote, it reads back to the same text.
    FileSystemCheck again;
    FUZZ_CHECK(again.fromString(written));
    FUZZ_CHECK(again.toString() == written);

    const QString report = check.compare(tree->path());
    FSItem parsed;
    check.restoreFromJson(QJsonDocument::fromJson(raw).object(), parsed);
    if (parsed.type == FSItem::File && parsed.children.isEmpty())
        FUZZ_CHECK(report.count(QLatin1Char('\n')) <= 1);
    check.compare(tree->filePath(QStringLiteral("missing")));
    return 0;
}
