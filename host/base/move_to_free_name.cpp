#include "move_to_free_name.h"

#include <cerrno>

namespace base {

bool isLinkRefused(int error)
{
    return error == EPERM || error == EOPNOTSUPP || error == EMLINK || error == ENOSYS;
}

int moveToFreeName(FileOps& ops, const std::string& from, const std::string& to)
{
    const int refusal = ops.renameNew(from, to);
    if (refusal != EINVAL)
        return refusal;
    const int error = ops.link(from, to);
    if (!error)
        ops.remove(from); // refused: a second name stays until it is revoked or swept
    if (!isLinkRefused(error))
        return error;
    // The file system promises neither. What is left is to look first; the fence keeps those who
    // publish apart.
    FileInfo info;
    const int there = ops.describeName(to, info);
    if (there != ENOENT)
        return there ? there : EEXIST;
    return ops.rename(from, to);
}

} // namespace base
