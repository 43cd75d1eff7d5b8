// How far a long piece of work has come, for who waits at a terminal.
#pragma once

#include <QElapsedTimer>

// A line on standard error that shows nothing in the first second, nor where standard error is no
// terminal. Whatever else is printed to the terminal comes after hide().
class Progress {
public:
    explicit Progress(int total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    // That many of the whole are done.
    void show(int done);
    void hide();

private:
    int total_;
    bool isWanted_;
    bool isShown_ = false;
    qint64 nextTime_;
    QElapsedTimer timer_;
};
