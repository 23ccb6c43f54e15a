#include "QtRunLoop.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

#include <QApplication>
#include <QWidget>

namespace host {

QtRunLoop::QtRunLoop() : fStop(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    AddDescriptor(fQueue.Descriptor(), [this] { fQueue.Drain(); });
    AddDescriptor(fStop, [this] {
        uint64_t count;
        [[maybe_unused]] const ssize_t taken = read(fStop, &count, sizeof count);
        fIsStopped = true;
        QCoreApplication::quit();
        if (QWidget* dialog = QApplication::activeModalWidget()) { // Before Run, only it can be ended.
            dialog->close();
            Stop(); // The next one, too.
        }
    });
}

QtRunLoop::~QtRunLoop() {
    // They live until the loop deletes them, and their descriptors don't.
    for (const auto& [descriptor, notifier] : fSources)
        notifier->setEnabled(false);
    for (const auto& [number, timer] : fTimers)
        timer->stop();
    if (fStop >= 0)
        close(fStop);
}

void QtRunLoop::Run() {
    if (!fIsStopped) // A dialog may have heard of it before.
        QCoreApplication::exec();
    fIsStopped = false;
}

void QtRunLoop::Stop() {
    const int savedError = errno;
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(fStop, &one, sizeof one);
    errno = savedError;
}

void QtRunLoop::AddDescriptor(int descriptor, std::function<void()> ready) {
    RemoveDescriptor(descriptor);
    auto* notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read);
    fSources.emplace(descriptor, notifier);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, std::move(ready));
}

void QtRunLoop::RemoveDescriptor(int descriptor) {
    const auto found = fSources.find(descriptor);
    if (found == fSources.end())
        return;
    found->second->setEnabled(false);
    fSources.erase(found);
}

int QtRunLoop::AddTimer(int milliseconds, std::function<void()> fire) {
    auto* timer = new QTimer;
    fTimers.emplace(++fLastTimer, timer);
    QObject::connect(timer, &QTimer::timeout, timer, std::move(fire));
    timer->setTimerType(Qt::PreciseTimer);
    timer->start(std::max(milliseconds, 1));
    return fLastTimer;
}

void QtRunLoop::RemoveTimer(int timer) {
    const auto found = fTimers.find(timer);
    if (found == fTimers.end())
        return;
    found->second->stop();
    fTimers.erase(found);
}

} // namespace host
