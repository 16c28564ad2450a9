// The build machine's header, and what only the BSDs have.
#pragma once
#include_next <sys/socket.h>
#define SO_NOSIGPIPE 0x1022
