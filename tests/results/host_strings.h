// A front end's array of automation strings.
#pragma once

#include <string>
#include <vector>

#include "platform/front_end_arrays.h"

namespace quorva {

class HostStrings {
public:
    explicit HostStrings(int count, const char16_t* text = nullptr) {
        for (int i = 0; i < count; ++i) {
            strings_.push_back(text == nullptr ? nullptr : SysAllocString(text));
        }
    }
    HostStrings(const HostStrings&) = delete;
    HostStrings& operator=(const HostStrings&) = delete;
    ~HostStrings() {
        for (auto* text : strings_) {
            SysFreeString(text);
        }
    }

    HostString* data() { return strings_.data(); }
    HostString at(int i) const { return strings_[static_cast<std::size_t>(i)]; }
    std::u16string text(int i) const { return std::u16string(textOf(at(i))); }
    std::vector<std::u16string> texts() const {
        std::vector<std::u16string> all;
        for (auto* text : strings_) {
            all.emplace_back(textOf(text));
        }
        return all;
    }

private:
    std::vector<HostString> strings_;
};

}  // namespace quorva
