#include "ThumbnailLink.h"

#include "CommonTool.h"
#include "GrabbedFrame.h"
#include "ThreadPool.h"
#include "ThumbnailFit.h"
#include "YuvFrame.h"

#include <spdlog/spdlog.h>

void ThumbnailLink::setBox(int width, int height)
{
    std::lock_guard<std::mutex> lock(mutex);
    maxWidth = width;
    maxHeight = height;
}

void ThumbnailLink::setItemSize(const QSizeF& size)
{
    std::lock_guard<std::mutex> lock(mutex);
    itemWidth = size.width();
    itemHeight = size.height();
}

void ThumbnailLink::detach()
{
    std::lock_guard<std::mutex> lock(mutex);
    announce = nullptr;
}

void startThumbnailLoad(const std::shared_ptr<ThumbnailLink>& link, const QString& filePath, double seconds)
{
    spdlog::info("loadThumbnail: filePath={}, seconds={}", filePath.toStdString(), seconds);
    CommonTool* tool = CommonTool::instance();
    ThreadPool::instance().submit(
        [link, tool, filePath, seconds]() { loadThumbnailJob(link, tool, filePath, seconds); });
}

void loadThumbnailJob(const std::shared_ptr<ThumbnailLink>& link, CommonTool* tool, const QString& filePath,
                      double seconds)
{
    const GrabbedFrame frame = grabThumbnailFrame(tool, filePath, seconds);
    if (!frame.isValid())
        return;

    std::shared_ptr<YuvFrame> target;
    QSize box;
    bool framebufferItem = false;
    {
        std::lock_guard<std::mutex> lock(link->mutex);
        if (!link->announce)
            return; // the item is gone
        target = link->frame;
        box = QSize(link->maxWidth, link->maxHeight);
        framebufferItem = link->framebufferItem;
    }
    if (!target) {
        spdlog::error("Renderer is null, cannot set thumbnail buffer.");
        return;
    }

    const QSize display = fitThumbnail(frame.width, frame.height, box.width(), box.height());
    if (framebufferItem)
        spdlog::debug("resize {} {}", display.width(), display.height());

    {
        std::lock_guard<std::mutex> lock(target->mutex);
        target->store(frame);
    }

    std::lock_guard<std::mutex> lock(link->mutex);
    if (!link->announce)
        return;
    if (link->itemWidth == display.width() && link->itemHeight == display.height())
        link->announce(0, 0);
    else
        link->announce(display.width(), display.height());
}
