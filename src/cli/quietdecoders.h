#pragma once

namespace marlowen {

/// While it exists, output of libraries on standard error is discarded: a failure is one line, but
/// image decoders and encoders print several about damaged files and full disks.
class QuietDecoders
{
public:
    QuietDecoders();
    ~QuietDecoders();
    QuietDecoders(const QuietDecoders &) = delete;
    QuietDecoders &operator=(const QuietDecoders &) = delete;

private:
    int m_standardError;
};

} // namespace marlowen
