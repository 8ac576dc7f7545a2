-- SPDX-License-Identifier: ISC
-- Runs in Ardour's engine without its window, four tasks:
--   make DIRECTORY SOUNDS   a session with one track for each variant, its plugin and a recording
--   set  DIRECTORY VALUES   gives the controls of both the values of a file and saves the session
--   hear DIRECTORY TRACK    mutes the other track and saves the session
--   show DIRECTORY          prints every control of both, as "track port value"
-- SOUNDS holds mono.wav and stereo.wav, four seconds at 48 kHz. VALUES has a line "symbol value" for
-- each control in the order of the ports.
local task, directory, argument = arg[1], arg[2], arg[3]

local kBase = "urn:brindle-audio:plugins/lv2/Brindle/"
local kFirstControl, kLastControl = 2, 52
local kTracks = { { name = "Mono", channels = 1 }, { name = "Stereo", channels = 2 } }

local backend = AudioEngine:set_backend("None (Dummy)", "", "")
backend:set_device_name("Silence")

local function plugin_of(track)
    return track:nth_plugin(0)
end

local function each_control(session, visit)
    for _, track in ipairs(kTracks) do
        local plugin = plugin_of(session:route_by_name(track.name))
        assert(not plugin:isnil(), "the plugin is not on its track")
        for port = kFirstControl, kLastControl do
            visit(track.name, plugin, port)
        end
    end
end

-- There is no way to import sounds without the window, so they are written into the session's file.
local function add_sounds(directory, sounds)
    local path = directory .. "/brindle.ardour"
    local file = assert(io.open(path))
    local text = file:read("a")
    file:close()
    local sources, id, length = {}, 900000, 4 * 282240000 -- Ardour's ticks in four seconds
    for _, track in ipairs(kTracks) do
        local sound = sounds .. "/" .. track.name:lower() .. ".wav"
        local channels = {}
        for channel = 0, track.channels - 1 do
            id = id + 1
            sources[#sources + 1] = string.format(
                '<Source name="%s" type="audio" flags="" id="%d" channel="%d" origin=""/>', sound, id, channel)
            channels[#channels + 1] = string.format('source-%d="%d" master-source-%d="%d"', channel, id, channel, id)
        end
        id = id + 1
        local region = string.format('<Region name="%s" id="%d" type="audio" channels="%d" %s start="a0" ' ..
            'length="a%d@a0" position="a0" opaque="1" external="1" scale-amplitude="1" stretch="1" shift="1" ' ..
            'fade-in-active="0" fade-out-active="0" envelope-active="0"/>',
            track.name:lower(), id, track.channels, table.concat(channels, " "), length)
        local count
        text, count = text:gsub('(<Playlist [^>]*name="' .. track.name .. '"[^>]*)/>', "%1>" .. region .. "</Playlist>")
        assert(count == 1, "no playlist for " .. track.name)
    end
    text = text:gsub("<Sources/>", "<Sources>" .. table.concat(sources) .. "</Sources>")
    text = text:gsub("<Locations/>", string.format('<Locations><Location id="%d" name="session" start="a0" ' ..
        'end="a%d" flags="IsSessionRange" locked="0"/></Locations>', id + 1, length))
    file = assert(io.open(path, "w"))
    file:write(text)
    file:close()
end

if task == "make" then
    local session = create_session(directory, "brindle", 48000)
    for _, track in ipairs(kTracks) do
        local made = session:new_audio_track(track.channels, track.channels, nil, 1, track.name,
            ARDOUR.PresentationInfo.max_order, ARDOUR.TrackMode.Normal, true):front()
        local plugin = ARDOUR.LuaAPI.new_plugin(session, kBase .. track.name:lower(), ARDOUR.PluginType.LV2, "")
        assert(not plugin:isnil(), "Ardour does not load the plugin " .. track.name)
        assert(made:add_processor_by_index(plugin, 0, nil, true) == 0)
    end
    session:save_state("")
    close_session()
    add_sounds(directory, argument)
elseif task == "set" then
    local session = load_session(directory, "brindle")
    local values = {}
    for line in io.lines(argument) do
        values[#values + 1] = tonumber(line:match("%S+ (%S+)"))
    end
    each_control(session, function(track, plugin, port)
        ARDOUR.LuaAPI.set_processor_param(plugin, port - kFirstControl, values[port - kFirstControl + 1])
    end)
    session:save_state("")
    close_session()
elseif task == "show" then
    local session = load_session(directory, "brindle")
    each_control(session, function(track, plugin, port)
        local value = ARDOUR.LuaAPI.get_processor_param(plugin, port - kFirstControl)
        print(string.format("%s %d %.9g", track, port, value))
    end)
    close_session()
elseif task == "hear" then
    local session = load_session(directory, "brindle")
    for _, track in ipairs(kTracks) do
        session:route_by_name(track.name):mute_control():set_value(track.name == argument and 0 or 1,
            PBD.GroupControlDisposition.NoGroup)
    end
    ARDOUR.LuaAPI.usleep(500000) -- the engine takes the change with its next cycles
    session:save_state("")
    close_session()
end
quit()
