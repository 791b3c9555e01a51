// The interfaces by which channels, properties and tasks tell their owner of a
// change, and the worker that a task hands the host's task messages to.
#pragma once

#include "zlrbase_host.h"

#include <cstdint>
#include <string>

namespace zlr::framework {

class IfChannelProperty;
class PluginChannel;
class PluginTask;

// Implemented by PluginChannel: told by a property that the plug-in itself
// changed it. Called inside a host message or an instance operation.
class IfChannelPropertyChangeListener {
public:
    virtual void onChannelPropertyChanged(IfChannelProperty* property) = 0;
    virtual ~IfChannelPropertyChangeListener() = default;
};

// Implemented by PluginChannels: told by a channel that a field of its own or
// one of its properties changed, and asked whether changes are allowed.
class IfPluginChannelChangeListener {
public:
    virtual void onChannelChanged(PluginChannel* channel) = 0;
    virtual void onChannelPropertyChanged(PluginChannel* channel,
                                          const std::string& property_name) = 0;
    virtual bool isChangeAllowed() = 0;
    virtual ~IfPluginChannelChangeListener() = default;
};

// Implemented by PluginChannels: told by a task before its set of channels
// changes, so that a registered task is taken down first.
class IfPluginTaskChangeListener {
public:
    virtual void onOutputChannelAdded(PluginTask* task, PluginChannel* channel) = 0;
    virtual void onOutputChannelRemoved(PluginTask* task, PluginChannel* channel) = 0;
    virtual void onTaskChanged(PluginTask* task) = 0;
    virtual ~IfPluginTaskChangeListener() = default;
};

// Implemented by SoftwareChannelInstance: runs the host's task messages. Each
// operation is called on the host's thread, one message at a time, with the
// token the task was made with. An exception other than CallbackError makes
// the message answer 13; CallbackError answers its own code.
class IfTaskWorker {
public:
    // PLUGIN_TASK_INIT_TIMEBASES, before processing starts.
    virtual void onInitTimebases(IfHost* host, std::uint64_t token) = 0;
    // PLUGIN_TASK_PREPARE_PROCESSING.
    virtual void onPrepareProcessing(IfHost* host, std::uint64_t token) = 0;
    // PLUGIN_TASK_PROCESS; `start` is the step's Start telegram or null. The
    // value stays the host's.
    virtual void onProcess(IfHost* host, std::uint64_t token, IfXmlValue* start) = 0;
    // PLUGIN_TASK_STOP_PROCESSING.
    virtual void onStopProcessing(IfHost* host, std::uint64_t token) = 0;
    // A setting of one of the task's channels, or an input, changed; the task
    // is down while this runs.
    virtual void onChannelConfigChanged(IfHost* host, std::uint64_t token) = 0;
    // Free for a worker's own use; nothing calls it.
    virtual void workerHook() = 0;
    virtual ~IfTaskWorker() = default;
};

} // namespace zlr::framework
