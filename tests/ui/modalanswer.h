#ifndef MODALANSWER_H
#define MODALANSWER_H

#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QTimer>
#include <QWidget>

#include <functional>

// Answers the next modal window that opens while it lives, the way a person
// would. A box the answer fails to close is rejected after a second, so a
// broken test fails instead of waiting for someone forever.
class ModalAnswer : public QObject
{
public:
    explicit ModalAnswer(std::function<void(QWidget *)> answer, QWidget *ignore = nullptr)
        : answer(std::move(answer))
        , ignore(ignore)
    {
        connect(&poll, &QTimer::timeout, this, &ModalAnswer::check);
        poll.start(10);
    }

    int answered = 0;

private:
    void check()
    {
        QWidget *modal = QApplication::activeModalWidget();
        if (!modal || modal == ignore)
            return;
        if (answered == 0) {
            ++answered;
            since.start();
            answer(modal);
            return;
        }
        if (since.elapsed() > 1000) {
            if (auto *dialog = qobject_cast<QDialog *>(modal))
                dialog->reject();
            else
                modal->close();
            since.restart();
        }
    }

    std::function<void(QWidget *)> answer;
    QWidget *ignore;
    QElapsedTimer since;
    QTimer poll;
};

// Wraps an answer for one kind of modal window; any other kind is left to time out.
template<typename T> std::function<void(QWidget *)> as(std::function<void(T *)> answer)
{
    return [answer](QWidget *modal) {
        if (auto *typed = qobject_cast<T *>(modal))
            answer(typed);
    };
}

// Types a file name into a Qt file dialog and accepts it. selectFile() is no
// use once the name field has the focus: it then leaves the field alone.
inline void chooseFile(QFileDialog *dialog, const QString &path)
{
    if (auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")))
        name->setText(path);
    static_cast<QDialog *>(dialog)->accept();
}

#endif // MODALANSWER_H
