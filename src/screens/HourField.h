#pragma once

#include <QWidget>

#include <optional>

class QLineEdit;

namespace brimsett {

// An hour of the day typed on the 12-hour clock: the hour, then "am" or "pm". In either box
// "A" or "P" picks the half of the day and "+" or "-" turns it over; an hour of 13 or more
// becomes 12; Enter moves on (the caller's EnterMovesOn sees both boxes).
class HourField : public QWidget {
    Q_OBJECT

public:
    explicit HourField(QWidget* parent = nullptr);

    // 0..23; none while the hour box does not hold 1 to 12.
    std::optional<int> hour() const;
    void setHour(int hour24);
    QLineEdit* hourBox() const { return m_hour; }
    QLineEdit* halfBox() const { return m_half; }

signals:
    void edited();
    // The desk is done with the field: Enter in either box, or the keyboard left it.
    void committed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setPm(bool pm);

    QLineEdit* m_hour = nullptr;
    QLineEdit* m_half = nullptr;
};

}  // namespace brimsett
