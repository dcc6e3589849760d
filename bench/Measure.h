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

// The time one run of `work` takes, in milliseconds.
inline double TimeOnce(const std::function<void()>& work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

// The median and the worst of timed runs (at least one).
inline Figures Summarize(QList<double> ms)
{
    std::sort(ms.begin(), ms.end());
    return {ms[ms.size() / 2], ms.last()};
}

inline Figures Measure(int runs, const std::function<void()>& work)
{
    QList<double> ms;
    for (int i = 0; i < std::max(runs, 1); ++i)
        ms << TimeOnce(work);
    return Summarize(ms);
}
