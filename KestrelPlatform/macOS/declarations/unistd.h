// The build machine's header, and what only the BSDs have.
#pragma once
#include_next <unistd.h>
extern "C" int getpeereid(int socket, uid_t* user, gid_t* group);
