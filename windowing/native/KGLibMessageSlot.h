#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

// The local message channel on a unix datagram socket in the user's
// runtime folder, named "<name>.slot". Datagrams keep the boundaries of
// the messages. A watch on the socket drains it into a queue as soon as
// something arrives, so that a waiting loop wakes and a nested native loop
// does not spin on unread data.
class KGLibMessageSlot {
public:
    KGLibMessageSlot() = default;
    ~KGLibMessageSlot();
    KGLibMessageSlot(const KGLibMessageSlot&) = delete;
    KGLibMessageSlot& operator=(const KGLibMessageSlot&) = delete;

    // A slot of the same name that nobody listens to any more (its program
    // ended without closing it) is taken over; one that is alive is not.
    bool open(const char* name);
    void close();
    bool isOpen() const { return socket >= 0; }
    int32_t nextSize();
    int32_t read(char* buffer, int32_t size);

    static bool send(const char* name, const std::vector<std::string>& messages);
    static std::string pathOf(const char* name);

private:
    void drain();
    static int watch(int fd, unsigned condition, void* data);

    int socket = -1;
    unsigned source = 0;
    std::string path;
    std::deque<std::string> received;
};
