#include "cli/quietdecoders.h"

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace marlowen {

QuietDecoders::QuietDecoders()
    : m_standardError(dup(STDERR_FILENO))
{
    std::fflush(stderr);
    const int nowhere = open("/dev/null", O_WRONLY);
    if (m_standardError < 0 || nowhere < 0)
        return;
    dup2(nowhere, STDERR_FILENO);
    close(nowhere);
}

QuietDecoders::~QuietDecoders()
{
    if (m_standardError < 0)
        return;
    std::fflush(stderr);
    dup2(m_standardError, STDERR_FILENO);
    close(m_standardError);
}

} // namespace marlowen
