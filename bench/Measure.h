#pragma once

#include <QElapsedTimer>
#include <QList>

#include <algorithm>
#include <functional>

// The median and the worst of several timed runs, in milliseconds.
struct Figures
{
    double Median;
    double Worst;
};

inline Figures Measure(int runs, const std::function<void()>& work)
{
    QList<double> ms;
    for (int i = 0; i < std::max(runs, 1); ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        ms << double(timer.nsecsElapsed()) / 1e6;
    }
    std::sort(ms.begin(), ms.end());
    return {ms[ms.size() / 2], ms.last()};
}
