#pragma once

namespace belvakit {

enum class AttachmentButtonState { selected, normal, hidden };

} // namespace belvakit
