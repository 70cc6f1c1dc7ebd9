#pragma once

// What a media job sees of the service that runs it: the shared cancel flag and the four
// reports of the job protocol (one total, progress on that scale, a cancel, then exactly one
// finish). CommonTool answers them with its signals; jobs know nothing more of it.
// Jobs call these from whatever thread they run on.
class JobReporter
{
public:
    // Read once per loop step.
    virtual bool isCancelled() const = 0;
    virtual void reportFrameTotal(int total) = 0;
    virtual void reportProgress(int progress) = 0;
    virtual void reportCancelled() = 0;
    virtual void reportFinished(bool success) = 0;

protected:
    ~JobReporter() = default;
};
