#pragma once

namespace marlowen {

/// While it lives, what libraries print on standard error is discarded: a failure is one line, and
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
