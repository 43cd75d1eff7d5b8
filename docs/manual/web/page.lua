-- Turns a page of the manual into the HTML of its text. A filter for pandoc, run by
-- scripts/manual.py, which writes the words after the backticks of a fence with "|" between them.

local LABELS = {
    st = "Script",
    statements = "Statements",
    listing = "Listing",
    items = "Code",
    code = "Code",
    message = "Messages",
    console = "Shell",
    csv = "Table",
    sh = "Shell",
}

-- What stands before the label, and what it is called in the style sheet.
local STATES = {
    wrong = { before = "Wrong", after = "" },
    warned = { before = "", after = "with a warning" },
    mended = { before = "Mended", after = "" },
}

local STATEMENTS_MARK = "^%s*%(%* statements %*%)%s*$"

local function html(text) return pandoc.RawBlock("html", text) end

local function escape(text)
    return (text:gsub("[&<>\"]", { ["&"] = "&amp;", ["<"] = "&lt;", [">"] = "&gt;",
        ['"'] = "&quot;" }))
end

local function words_of_fence(block)
    local words = {}
    for word in (block.classes[1] or ""):gmatch("[^|]+") do
        table.insert(words, word)
    end
    return words
end

-- ------------------------------------------------------------------------------------------------
-- First it is found out which scripts are wrong: a script is followed by its messages.
-- ------------------------------------------------------------------------------------------------

local faults = {} -- of the scripts of the page in order: "wrong", "warned" or false

local function fault_in(messages)
    local text = "\n" .. messages:lower()
    if text:find("\n[^\n]-%f[%w]error%f[%W]") then
        return "wrong"
    end
    return text:find("\n[^\n]-%f[%w]warning%f[%W]") and "warned"
end

local look_at_messages = {
    CodeBlock = function(block)
        local kind = words_of_fence(block)[1]
        if kind == "st" then
            table.insert(faults, false)
        elseif kind == "message" and #faults > 0 then
            faults[#faults] = fault_in(block.text)
        end
    end,
}

-- ------------------------------------------------------------------------------------------------
-- Examples
-- ------------------------------------------------------------------------------------------------

local script_count = 0
local is_faulty_above = false -- a script between the latest heading and here
local mark_line = 1 -- where statements stand in the latest frame

-- A right script after a wrong one of the same section is that one mended.
local function state_of_script(role)
    local fault = faults[script_count]
    is_faulty_above = is_faulty_above or fault
    return fault or is_faulty_above and role ~= "frame" and "mended"
end

local function line_of_mark(text)
    local number = 0
    for line in (text .. "\n"):gmatch("(.-)\n") do
        number = number + 1
        if line:match(STATEMENTS_MARK) then
            return number
        end
    end
    return 1
end

local function caption(label, state, name)
    local form = STATES[state] or { before = "", after = "" }
    local noun = form.before == "" and label or label:lower()
    local text = table.concat({ form.before, noun, name, form.after }, " ")
    local trimmed = text:gsub("^ +", ""):gsub(" +$", ""):gsub("  +", " ")
    return "<figcaption>" .. trimmed .. "</figcaption>"
end

-- The lines are numbered as the messages count them: statements stand in a frame.
local function numbered(block, role)
    if role == "frame" then
        mark_line = line_of_mark(block.text)
    end
    local first = role == "statements" and mark_line or 1
    local attributes = { startFrom = tostring(first) }
    return pandoc.CodeBlock(block.text,
        pandoc.Attr("lines-" .. script_count, { "yxst", "numberLines" }, attributes))
end

local function figure(classes, its_caption, block)
    local class = table.concat(classes, " ")
    return { html('<figure class="' .. class .. '">' .. its_caption), block, html("</figure>") }
end

local function script(block, role)
    script_count = script_count + 1
    local state = state_of_script(role)
    local name = role:match("%.st$") and "<code>" .. escape(role) .. "</code>" or ""
    local its_caption = caption(LABELS[role] or LABELS.st, state, name)
    return figure({ "script", state or nil }, its_caption, numbered(block, role))
end

local function example(block)
    local words = words_of_fence(block)
    local kind = words[1] or "text"
    if kind == "st" then
        return script(block, words[2] or "")
    end
    block.classes = { kind }
    local name = kind == "csv" and "<code>" .. escape(words[2] or "") .. "</code>" or ""
    return figure({ kind }, LABELS[kind] and caption(LABELS[kind], nil, name) or "", block)
end

-- ------------------------------------------------------------------------------------------------
-- Text
-- ------------------------------------------------------------------------------------------------

local PERMALINK = '<a class="permalink" href="#%s" aria-label="Link to: %s">#</a>'

local function heading(header)
    is_faulty_above = false
    local title = escape(pandoc.utils.stringify(header.content))
    header.content:insert(pandoc.RawInline("html", PERMALINK:format(header.identifier, title)))
    return header
end

local function wide_table(its_table)
    return { html('<div class="table">'), its_table, html("</div>") }
end

-- Pages link to pages. What lies outside the manual is named and not linked to.
local function link(its_link)
    if its_link.target:match("^%a+:") then
        return its_link
    end
    local name, anchor = its_link.target:match("^([^#]*)(.*)$")
    if name == "" then
        return its_link
    end
    local page = name:match("^([^/]+)%.md$")
    if page == nil then
        return its_link.content
    end
    its_link.target = (page == "README" and "index" or page) .. ".html" .. anchor
    return its_link
end

-- The identifiers in comments are places that editors lead to: those of messages and lints. A page
-- may have several entries for one; the first has the place.
local placed = {}

local function places_of(comment)
    local ids = comment:match("^<!%-%- id: (.-) %-%->") or comment:match("^<!%-%- reason: (.-) %-%->")
    local places = pandoc.List()
    for id in (ids or ""):gmatch("[%w-]+") do
        if not placed[id] then
            placed[id] = true
            places:insert(pandoc.RawInline("html", '<span id="id-' .. id .. '"></span>'))
        end
    end
    return places
end

local function is_comment(block)
    return block.t == "RawBlock" and block.text:match("^<!%-%-")
end

-- Comments are for those who write the pages; their places go into the headings above them.
local function without_comments(blocks)
    local left = pandoc.List()
    for _, block in ipairs(blocks) do
        if not is_comment(block) then
            left:insert(block)
        elseif #left > 0 and left[#left].t == "Header" then
            left[#left].content = places_of(block.text) .. left[#left].content
        end
    end
    return left
end

return {
    look_at_messages,
    {
        Header = heading,
        CodeBlock = example,
        Table = wide_table,
        Link = link,
        Blocks = without_comments,
    },
}
