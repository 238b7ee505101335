#pragma once

#include "platform/FolderWatch.h"

#include <utility>

namespace kelvara {

/// Calls when the test says so, and once when watching begins.
class FakeFolderWatch : public FolderWatch {
public:
    void watch(const FileURL& watched, std::function<void()> onChange) override {
        folder = watched;
        m_onChange = std::move(onChange);
        m_onChange();
    }
    void change() const {
        if (m_onChange) m_onChange();
    }

    FileURL folder;

private:
    std::function<void()> m_onChange;
};

} // namespace kelvara
