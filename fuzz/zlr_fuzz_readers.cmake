# The readers of outside input that have a fuzz target zlr_fuzz_<reader>,
# shared by the libFuzzer build and the seed replay of every build.
set(ZLR_FUZZ_READERS
  property_read
  update_config
  update_plugin_channels
  channels
  channel_id_map
  create_software_channel
  query_software_channel_action
  process_window
  stream_descriptors
  data_block_list
  data_block
  data_regions
  channel_config_changed
  data_format
  timestamp)
