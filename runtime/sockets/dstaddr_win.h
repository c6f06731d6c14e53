// The system's call that receives a message with its control data. Not part of the public header.
#pragma once

#include <winsock2.h>
#include <mswsock.h>

#include <atomic>

namespace ov {

// Null until a socket has asked for it; the same for all sockets.
extern std::atomic<LPFN_WSARECVMSG> receive_message;

}  // namespace ov
