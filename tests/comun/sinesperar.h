#pragma once

#include <QFile>

#include <gtest/gtest.h>

#include <chrono>
#include <fcntl.h>
#include <future>
#include <unistd.h>

// Runs the call on another thread. One still waiting after two seconds (on a FIFO) fails
// the test and is let go by opening the FIFO to write, as often as it waits.
template <typename Llamada>
auto sinQuedarseEsperando(const QString &fifo, Llamada llamada)
{
    auto resultado = std::async(std::launch::async, llamada);
    if (resultado.wait_for(std::chrono::seconds(2)) == std::future_status::timeout) {
        ADD_FAILURE() << "se quedó esperando en " << fifo.toStdString();
        do {
            const int fd = ::open(QFile::encodeName(fifo).constData(), O_WRONLY | O_NONBLOCK);
            if (fd >= 0)
                ::close(fd);
        } while (resultado.wait_for(std::chrono::milliseconds(50)) == std::future_status::timeout);
    }
    return resultado.get();
}
