#pragma once

#include "platform/DialUpState.h"

// A dial-up link on Linux: NetworkManager (system bus) has an active connection of a
// dial-up kind (mobile broadband, PPPoE, ADSL, Bluetooth), or a ppp interface is up.
// Without NetworkManager only the interfaces are looked at.
class LinuxDialUpState final : public DialUpState
{
public:
    bool DialUpConnection() const override;
};
