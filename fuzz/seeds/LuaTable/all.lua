s = { -- a comment
	1, +2.5; -.5e3, 0x1F,
	a = "text \"quoted\" \065\n", ['b'] = [==[ long ]] ]==],
	[3] = { true, false, nil, {} },
}
