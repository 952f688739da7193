#pragma once

#include <QDate>
#include <QDateTime>

namespace brimsett {

// Today's date and the time come from here, so that tests can pin them.
class Clock {
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
    QDate today() const { return now().date(); }
};

class SystemClock : public Clock {
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
};

class FixedClock : public Clock {
public:
    explicit FixedClock(QDateTime moment) : m_moment(std::move(moment)) {}
    QDateTime now() const override { return m_moment; }
    void set(const QDateTime& moment) { m_moment = moment; }
    void advanceSeconds(qint64 seconds) { m_moment = m_moment.addSecs(seconds); }

private:
    QDateTime m_moment;
};

}  // namespace brimsett
