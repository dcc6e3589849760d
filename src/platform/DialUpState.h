#pragma once

// Whether the computer reaches the network through a dial-up link (a modem, ISDN or a
// mobile-broadband line), where a time query may cost a call.
class DialUpState
{
public:
    virtual ~DialUpState() = default;
    // True when the active network link is of a dial-up kind.
    virtual bool DialUpConnection() const = 0;
};

// For systems that cannot tell: never dial-up.
class NullDialUpState final : public DialUpState
{
public:
    bool DialUpConnection() const override { return false; }
};
