// Automation strings and arrays owned by a front end.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "quorva/automation.h"

#include "common/unicode.h"

namespace quorva::frontend {

/// `count` automation strings, null at first; the module fills them.
class HostStrings {
public:
    explicit HostStrings(std::size_t count) : strings_(count, nullptr) {}
    HostStrings(const HostStrings&) = delete;
    HostStrings& operator=(const HostStrings&) = delete;
    ~HostStrings() {
        for (const HostString text : strings_) {
            SysFreeString(text);
        }
    }

    HostString* data() { return strings_.data(); }
    std::string utf8(std::size_t index) const {
        const HostString text = strings_[index];
        return text ? utf8FromUtf16({text, SysStringLen(text)}) : std::string{};
    }

private:
    std::vector<HostString> strings_;
};

/// A one-dimensional array of strings, empty or made from UTF-8 labels; the module may replace it.
class HostLabels {
public:
    HostLabels() = default;
    explicit HostLabels(std::span<const std::string> labels)
        : array_(SafeArrayCreateVector(hostStringVariant, 0, static_cast<std::uint32_t>(labels.size()))) {
        for (std::size_t i = 0; i < labels.size(); ++i) {
            elements()[i] = SysAllocString(utf16FromUtf8(labels[i]).c_str());
        }
    }
    HostLabels(const HostLabels&) = delete;
    HostLabels& operator=(const HostLabels&) = delete;
    ~HostLabels() {
        if (array_) {
            SafeArrayDestroy(array_);
        }
    }

    HostStringArray** address() { return &array_; }
    std::vector<std::string> utf8() const {
        std::vector<std::string> labels;
        for (std::uint32_t i = 0; array_ && i < array_->rgsabound[0].cElements; ++i) {
            const HostString text = elements()[i];
            labels.push_back(text ? utf8FromUtf16({text, SysStringLen(text)}) : std::string{});
        }
        return labels;
    }

private:
    HostString* elements() const { return static_cast<HostString*>(array_->pvData); }
    HostStringArray* array_ = nullptr;
};

}  // namespace quorva::frontend
