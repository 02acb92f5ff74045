-- Dissects ravelink's update protocol (docs/protocol.md) in Wireshark 3.6 or later and tshark.
--
-- Install: copy this file to the directory of personal Lua plugins (see Help > About > Folders). To use
-- it once: "wireshark -X lua_script:ravelink.lua capture.pcapng", or tshark with the same option.
--
-- The TCP port is 3007. For others, use Preferences > Protocols > RAVELINK ("-o ravelink.ports:4711")
-- or "Decode As..." ("-d tcp.port==4711,ravelink"). Useful display filters:
--
--   ravelink.notification.code    the notifications of the device
--   ravelink.notification.status  the errors that it reports
--   ravelink.data.offset          the offsets of the file data
--   _ws.expert && ravelink        all problems
--
-- The position of a byte in its connection determines its meaning, so lost, repeated and reordered
-- segments do not affect the dissection of others. The end of the file is known only if the capture
-- contains the request.

local ravelink = Proto("ravelink", "Ravelink Update Protocol")

local record_size = 16
local data_start = 2 * record_size -- after request and transfer header
local magic = 0xE8B47CC3
local magic_complement = 0x174B833C
local header_constant = 0x00010000

local code_names = {
    [1] = "Accepted",
    [2] = "Received",
    [3] = "Checked",
    [4] = "Processing",
    [5] = "Complete",
    [0x80000001] = "Error",
    [0x80000002] = "ErrorAlt",
}

local restart_names = {
    [1] = "FirmwareRestart",
    [2] = "HardwareRestart",
    [3] = "PowerCycle",
}

local status_names = {
    [1] = "InvalidMagic",
    [2] = "InvalidCrc",
    [3] = "InvalidDataSize",
    [4] = "InvalidMagicComplement",
    [5] = "DataSizeTooBig",
    [6] = "SystemBusy",
    [7] = "InvalidPassword",
    [8] = "InvalidVersion",
    [9] = "Timeout",
    [10] = "ExchangeFailed",
    [11] = "ReadWriteError",
    [12] = "WrongFileCrc",
    [13] = "Interrupted",
    [14] = "GhostError",
    [15] = "InvalidTarget",
}

-- The four fields of each record in wire order: name, title, display and names of values.
local records = {
    request = {
        title = "Request",
        { "magic", "Magic", base.HEX },
        { "file_size", "File size", base.DEC },
        { "file_crc", "File CRC-32", base.HEX },
        { "magic_complement", "Magic complement", base.HEX },
    },
    header = {
        title = "Transfer header",
        { "magic", "Magic", base.HEX },
        { "accept_token", "Accept token", base.HEX },
        { "constant", "Constant", base.HEX },
        { "file_size", "File size", base.DEC },
    },
    trailer = {
        title = "Transfer trailer",
        { "file_size", "File size", base.DEC },
        { "file_crc", "File CRC-32", base.HEX },
        { "accept_token", "Accept token", base.HEX },
        { "magic", "Magic", base.HEX },
    },
    notification = {
        title = "Notification",
        { "magic", "Magic", base.HEX },
        { "code", "Code", base.HEX, code_names },
        { "value", "Value", base.HEX },
        { "crc", "CRC-32", base.HEX },
    },
}

local function number(name, title, display, names)
    return ProtoField.uint32("ravelink." .. name, title, display, names)
end

local fields = {
    accept_token = number("notification.accept_token", "Accept token", base.HEX),
    restart = number("notification.restart", "Restart", base.DEC, restart_names),
    status = number("notification.status", "Status", base.DEC, status_names),
    data = ProtoField.bytes("ravelink.data", "File data"),
    data_offset = number("data.offset", "Offset in the file", base.DEC),
    data_length = number("data.length", "Length", base.DEC),
    data_progress = ProtoField.float("ravelink.data.progress", "Progress (%)"),
    fragment = ProtoField.bytes("ravelink.fragment", "Part of a record"),
    surplus = ProtoField.bytes("ravelink.surplus", "Bytes after the trailer"),
    unknown = ProtoField.bytes("ravelink.unknown", "Bytes at an unknown position"),
}
local all_fields = {}
for kind, record in pairs(records) do
    for _, word in ipairs(record) do
        word.field = number(kind .. "." .. word[1], word[2], word[3], word[4])
        table.insert(all_fields, word.field)
    end
end
for _, field in pairs(fields) do
    table.insert(all_fields, field)
end
ravelink.fields = all_fields

local function finding(name, text, group, severity)
    name = "ravelink." .. name
    return ProtoExpert.new(name, text, expert.group[group], expert.severity[severity])
end

local experts = {
    wrong_magic = finding("wrong_magic", "Wrong magic or constant", "PROTOCOL", "ERROR"),
    wrong_crc = finding("wrong_crc", "Wrong CRC", "CHECKSUM", "ERROR"),
    mismatch = finding("mismatch", "Contradicts an earlier record", "PROTOCOL", "ERROR"),
    error = finding("error", "The device reports an error", "RESPONSE_CODE", "WARN"),
    unknown_code = finding("unknown_code", "Unknown code", "PROTOCOL", "WARN"),
    fragment = finding("incomplete", "Incomplete record", "REASSEMBLE", "WARN"),
    surplus = finding("trailing_data", "Data after the trailer", "PROTOCOL", "WARN"),
    unknown = finding("no_beginning", "The start of the connection is missing", "SEQUENCE", "NOTE"),
}
ravelink.experts = experts

local tcp_stream = Field.new("tcp.stream")
local tcp_seq = Field.new("tcp.seq")
local tcp_seq_raw = Field.new("tcp.seq_raw")
local tcp_len = Field.new("tcp.len")
local tcp_completeness = Field.new("tcp.completeness")

-- Bitwise exclusive or, without operators that only some versions of Lua have.
local function xor(a, b)
    local result, bit = 0, 1
    while a > 0 or b > 0 do
        if a % 2 ~= b % 2 then
            result = result + bit
        end
        a, b, bit = math.floor(a / 2), math.floor(b / 2), bit * 2
    end
    return result
end

local crc_table = {}
for byte = 0, 255 do
    local crc = byte
    for _ = 1, 8 do
        local low = crc % 2
        crc = math.floor(crc / 2)
        crc = low == 1 and xor(crc, 0xEDB88320) or crc
    end
    crc_table[byte] = crc
end

local function crc32(range)
    local crc = 0xFFFFFFFF
    for i = 0, range:len() - 1 do
        crc = xor(crc_table[xor(crc % 256, range(i, 1):uint())], math.floor(crc / 256))
    end
    return xor(crc, 0xFFFFFFFF)
end

local function hex(number)
    return string.format("0x%08X", number)
end

-- The state of each connection, by its stream number: the end that is the updater, the size and CRC
-- of the file, the token, and the position of a record that continues in a later segment.
local connections = {}
-- The location of the bytes of each call, by frame and offset in the frame: frames are dissected
-- again in any order, with the same result.
local locations = {}

function ravelink.init()
    connections = {}
    locations = {}
end

local function is_request(tvb)
    return tvb:len() >= record_size
        and tvb(0, 4):uint() == magic
        and tvb(12, 4):uint() == magic_complement
end

local function is_from_updater(connection, tvb, pinfo)
    local source = tostring(pinfo.src) .. " " .. pinfo.src_port
    if not connection.updater then
        -- The end with the dissected port is the device, unless it sends a request: with "Decode
        -- As..." the port may be the updater's. If the port does not decide, the updater sends first.
        local target = tostring(pinfo.dst) .. " " .. pinfo.dst_port
        local by_port = pinfo.match_uint == pinfo.src_port and pinfo.src_port ~= pinfo.dst_port
        connection.updater = by_port and not is_request(tvb) and target or source
    end
    return connection.updater == source
end

-- Whether these bytes can be the first that the updater or the device sends.
local function is_beginning(tvb)
    return tvb:len() < 4 or tvb(0, 4):uint() == magic
end

-- Returns the location of the bytes of this call: their sender and position in the connection.
local function location_of(tvb, pinfo)
    local frame = locations[pinfo.number] or {}
    locations[pinfo.number] = frame
    -- Bytes reassembled from several segments are not part of the frame: their offset is 0.
    local offset = tvb:offset()
    if frame[offset] then
        return frame[offset]
    end
    local stream = tcp_stream().value
    local connection = connections[stream] or { updater_side = {}, device_side = {} }
    connections[stream] = connection
    local from_updater = is_from_updater(connection, tvb, pinfo)
    local side = from_updater and connection.updater_side or connection.device_side
    if not side.base then
        local sequence = tcp_seq().value
        local relative = sequence ~= tcp_seq_raw().value
        side.base = relative and 1 or sequence
        -- The two lowest bits: the capture contains the handshake.
        local completeness = tcp_completeness()
        local opened = completeness and completeness.value % 4 > 0
        side.known = opened or is_beginning(tvb)
    end
    local position = side.pending
    if offset > 0 or not position then
        local sequence = tcp_seq().value + tcp_len().value - tvb:reported_len()
        position = (sequence - side.base) % 0x100000000
    end
    frame[offset] = {
        connection = connection,
        from_updater = from_updater,
        side = side,
        position = position,
    }
    return frame[offset]
end

-- Returns the kind of data at a position, and the positions where it begins and ends.
local function part_at(location, position)
    if not location.side.known then
        return "unknown", position, math.huge
    end
    if not location.from_updater then
        local start = position - position % record_size
        return "notification", start, start + record_size
    end
    local data_end = location.file_size and data_start + location.file_size or math.huge
    if position < record_size then
        return "request", 0, record_size
    elseif position < data_start then
        return "header", record_size, data_start
    elseif position < data_end then
        return "data", data_start, data_end
    elseif position < data_end + record_size then
        return "trailer", data_end, data_end + record_size
    end
    return "surplus", data_end + record_size, math.huge
end

-- For a field with a required value, returns that value, if known, and the expert information and
-- its text for any other.
local function rule_of(kind, name, range, connection)
    if name == "magic" then
        return magic, experts.wrong_magic, "The magic should be "
    elseif name == "magic_complement" then
        return magic_complement, experts.wrong_magic, "The complement should be "
    elseif name == "constant" then
        return header_constant, experts.wrong_magic, "The constant should be "
    elseif name == "crc" then
        return crc32(range(0, 12)), experts.wrong_crc, "The CRC should be "
    elseif name == "accept_token" then
        return connection.token, experts.mismatch, "The device sent the token "
    elseif name == "file_size" and kind ~= "request" then
        return connection.file_size, experts.mismatch, "The request has "
    elseif name == "file_crc" and kind ~= "request" then
        return connection.file_crc, experts.mismatch, "The request has "
    end
end

-- Adds the value of a notification by its code, and returns the description of the notification.
local function show_notification(item, range, values)
    local code, value = values.code, values.value
    local value_range = range(8, 4)
    local name = code_names[code]
    if name == "Accepted" then
        item:add(fields.accept_token, value_range)
        return "Accepted, token " .. hex(value)
    elseif name == "Complete" then
        item:add(fields.restart, value_range)
        return "Complete, " .. (restart_names[value] or "restart " .. hex(value))
    elseif name == "Error" or name == "ErrorAlt" then
        local text = name .. ", " .. (status_names[value] or "status " .. hex(value))
        local status_item = item:add(fields.status, value_range)
        status_item:add_proto_expert_info(experts.error, "The device reports: " .. text)
        return text
    elseif name then
        return name
    end
    local text = "Unknown code " .. hex(code)
    item:add_proto_expert_info(experts.unknown_code, text)
    return text
end

local function show_record(kind, location, range, pinfo, tree)
    local record, connection = records[kind], location.connection
    local item = tree:add(ravelink, range)
    local values, valid = {}, true
    for i, word in ipairs(record) do
        local name, word_range = word[1], range(4 * (i - 1), 4)
        local value = word_range:uint()
        local word_item = item:add(word.field, word_range)
        local required, expert_info, text = rule_of(kind, name, range, connection)
        if required and value ~= required then
            valid = false
            text = text .. (name == "file_size" and required or hex(required))
            word_item:add_proto_expert_info(expert_info, text)
        end
        values[name] = value
    end
    local text = record.title
    if kind == "notification" then
        text = show_notification(item, range, values)
        if code_names[values.code] == "Accepted" and valid and not pinfo.visited then
            connection.token = connection.token or values.value
        end
    elseif kind == "request" then
        text = text .. ": " .. values.file_size .. " bytes, CRC-32 " .. hex(values.file_crc)
        if not pinfo.visited then
            connection.file_size, connection.file_crc = values.file_size, values.file_crc
            location.file_size = values.file_size
        end
    else
        text = text .. ", token " .. hex(values.accept_token)
    end
    item:set_text("Ravelink Update Protocol, " .. text)
    return text
end

local function show_data(location, range, position, length, tree)
    local offset = position - data_start
    local text = string.format("Data %d to %d", offset, offset + length)
    local item = tree:add(ravelink, range)
    item:add(fields.data, range)
    item:add(fields.data_offset, offset):set_generated()
    item:add(fields.data_length, length):set_generated()
    if location.file_size then
        local progress = (offset + length) * 100 / location.file_size
        item:add(fields.data_progress, progress):set_generated()
        text = string.format("%s of %d (%d %%)", text, location.file_size, math.floor(progress))
    end
    item:set_text("Ravelink Update Protocol, " .. text)
    return text
end

local function show_other(kind, range, tree)
    local titles = {
        fragment = "Part of a record",
        surplus = "After the trailer",
        unknown = "Unknown position",
    }
    local item = tree:add(ravelink, range, "Ravelink Update Protocol, " .. titles[kind])
    item:add(fields[kind], range):add_proto_expert_info(experts[kind])
    return titles[kind]
end

function ravelink.dissector(tvb, pinfo, tree)
    if not tcp_seq() then
        return 0
    end
    local first_of_frame = tvb:offset() == 0 or tvb:reported_len() == tcp_len().value
    local location = location_of(tvb, pinfo)
    if not pinfo.visited then
        location.file_size = location.connection.file_size
    end
    local texts = {}
    local offset = 0
    while offset < tvb:len() do
        local position = location.position + offset
        local kind, start, stop = part_at(location, position)
        local length = math.min(stop - position, tvb:reported_len() - offset)
        local range = tvb(offset, math.min(length, tvb:len() - offset))
        local is_record = records[kind] ~= nil
        local continues = is_record and position == start and position + length < stop
        if continues and pinfo.can_desegment > 0 then
            pinfo.desegment_offset = offset
            pinfo.desegment_len = stop - position - length
            if not pinfo.visited then
                location.side.pending = position
            end
            break
        end
        if is_record and range:len() == record_size then
            table.insert(texts, show_record(kind, location, range, pinfo, tree))
        elseif kind == "data" then
            table.insert(texts, show_data(location, range, position, length, tree))
        else
            table.insert(texts, show_other(is_record and "fragment" or kind, range, tree))
        end
        offset = offset + length
    end
    if #texts > 0 then
        pinfo.cols.protocol = "RAVELINK"
        pinfo.cols.info:set((first_of_frame and "" or "; ") .. table.concat(texts, "; "))
        pinfo.cols.info:fence()
    end
end

local tcp_ports = DissectorTable.get("tcp.port")
ravelink.prefs.ports = Pref.range("TCP ports", "3007", "The ports of the devices", 65535)
local ports = ravelink.prefs.ports
tcp_ports:add(ports, ravelink)
tcp_ports:add_for_decode_as(ravelink)

function ravelink.prefs_changed()
    if ports ~= ravelink.prefs.ports then
        tcp_ports:remove(ports, ravelink)
        ports = ravelink.prefs.ports
        tcp_ports:add(ports, ravelink)
    end
end
