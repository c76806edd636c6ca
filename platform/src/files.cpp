#include "platform/files.hpp"

#include "platform/uuid.hpp"

#include <fstream>
#include <iterator>

namespace platform {

std::optional<std::string> readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    if (!in) return std::nullopt;
    // One read of the size the file has now; a file that grows meanwhile is read to its end.
    const std::streamoff size = in.tellg();
    std::string bytes;
    if (size > 0) {
        bytes.resize(static_cast<std::size_t>(size));
        in.seekg(0);
        in.read(bytes.data(), static_cast<std::streamsize>(size));
        bytes.resize(static_cast<std::size_t>(in.gcount()));
    }
    if (in.good()) bytes.append(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    if (in.bad()) return std::nullopt;
    return bytes;
}

bool writeFileAtomically(const std::filesystem::path& path, std::string_view bytes) {
    std::error_code error;
    if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path(), error);
    const std::filesystem::path temporary = path.string() + ".tmp-" + uuidString();
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        if (!out) return false;
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.flush();
        if (!out) {
            out.close();
            std::filesystem::remove(temporary, error);
            return false;
        }
    }
    std::filesystem::rename(temporary, path, error);
    if (error) {
        std::filesystem::remove(temporary, error);
        return false;
    }
    return true;
}

} // namespace platform
