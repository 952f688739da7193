#pragma once

#include "ministry/TransferWait.h"

#include <functional>

namespace brimsett {

// How a screen waits for the transfer agent: the window keeps repainting while typing and
// clicks wait, so the same transfer cannot be started twice; the count goes to show (a
// status line or a label), an empty text when the wait is over.
class RepaintingWait : public TransferWait {
public:
    explicit RepaintingWait(std::function<void(const QString&)> show = {})
        : m_show(std::move(show)) {}
    void pause(int milliseconds) override;
    void status(const QString& text) override;

private:
    std::function<void(const QString&)> m_show;
};

}  // namespace brimsett
