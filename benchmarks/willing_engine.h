// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>
#include <thread>

/// An engine on loopback that takes whatever is sent to it and keeps nothing of it; one sender at a
/// time.
class WillingEngine {
  public:
    WillingEngine() : listener_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in place{};
        place.sin_family = AF_INET;
        place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof place;
        if (bind(listener_, reinterpret_cast<sockaddr*>(&place), size) != 0 ||
            listen(listener_, 1) != 0 ||
            getsockname(listener_, reinterpret_cast<sockaddr*>(&place), &size) != 0)
            std::abort();
        port_ = ntohs(place.sin_port);
        std::thread([listener = listener_] { serve(listener); }).detach();
    }
    ~WillingEngine() { shutdown(listener_, SHUT_RDWR); }
    WillingEngine(const WillingEngine&) = delete;
    WillingEngine& operator=(const WillingEngine&) = delete;

    int port() const { return port_; }

  private:
    static void serve(int listener) {
        for (;;) {
            const int sender = accept(listener, nullptr, nullptr);
            if (sender < 0) return;
            std::string held;
            while (take_request(sender, held)) {
                static const std::string kTaken = "HTTP/1.1 204 No Content\r\n\r\n";
                if (write(sender, kTaken.data(), kTaken.size()) < 0) break;
            }
            close(sender);
        }
    }
    static bool read_more(int sender, std::string& held) {
        std::array<char, 4096> part{};
        const ssize_t count = read(sender, part.data(), part.size());
        if (count > 0) held.append(part.data(), static_cast<std::size_t>(count));
        return count > 0;
    }
    static bool take_request(int sender, std::string& held) {
        std::size_t end = 0;
        while ((end = held.find("\r\n\r\n")) == std::string::npos)
            if (!read_more(sender, held)) return false;
        const std::size_t length = held.find("Content-Length: ");
        const std::size_t body =
            length < end ? std::strtoul(held.c_str() + length + 16, nullptr, 10) : 0;
        while (held.size() < end + 4 + body)
            if (!read_more(sender, held)) return false;
        held.erase(0, end + 4 + body);
        return true;
    }

    int listener_;
    int port_ = 0;
};
