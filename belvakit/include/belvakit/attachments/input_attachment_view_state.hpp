#pragma once

// The attachment strip's entry has one definition, beside its image and file kinds.
#include "belvakit/attachments/input_attachment.hpp"
