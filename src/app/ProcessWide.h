#pragma once

#include <QCoreApplication>
#include <QObject>
#include <type_traits>

namespace processwide_detail {
template <typename T, typename = void> struct HasMaker : std::false_type
{
};
template <typename T> struct HasMaker<T, std::void_t<decltype(T::makeProcessWide())>> : std::true_type
{
};
} // namespace processwide_detail

// The one way a process-wide service is made: on its first use, from whichever thread asks
// first (the language makes that first use thread-safe), and never destroyed, so pool tasks,
// libmpv callbacks and the QML engine may reach it until the process ends; the system takes
// back what it holds. A QObject service belongs to the application's thread whoever asked
// first, because the QML engine and its queued receivers rely on that.
// A service that needs something start-up decided (the history's file), or that no one else
// may construct (the media controls), makes itself through a static `T* makeProcessWide()`;
// the others are default-constructed.
// The thread pool alone is destroyed at exit: its workers must finish before the process does.
template <typename T> T& processWide()
{
    static T* const instance = [] {
        T* made = nullptr;
        if constexpr (processwide_detail::HasMaker<T>::value)
            made = T::makeProcessWide();
        else
            made = new T;
        if constexpr (std::is_base_of_v<QObject, T>) {
            QCoreApplication* app = QCoreApplication::instance();
            if (app && made->thread() != app->thread())
                made->moveToThread(app->thread());
        }
        return made;
    }();
    return *instance;
}
