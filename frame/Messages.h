#pragma once

namespace tovrand {

// The component's own message texts and titles.
inline constexpr const char* kTitleQuenta = "Quenta软件";
inline constexpr const char* kTitleErrorNotice = "错误提示";
inline constexpr const char* kTooLongMessage = "你输入的内容超过了允许长度，请检查";

}  // namespace tovrand
